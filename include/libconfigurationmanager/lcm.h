// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_LCM_H
#define LIBCONFIGURATIONMANAGER_LCM_H

#include <libconfigurationmanager/export.h>

#include <QtCore/QList>
#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QPair>
#include <QtCore/QVariant>
#include <QtCore/QVector>

class QDBusArgument;

/// An ordered list of named property maps; `a(sa{sv})` on the wire.
using ConfigurationList = QList<QPair<QString, QVariantMap>>;

/// The vocabulary that the library shares with the configuration service.
namespace lcm {

using ::ConfigurationList;

/// Holds the shared enumerations for the meta-object system.
///
/// On the wire every value is an int32. Received numbers are passed through unchecked: a value
/// without a key here is possible.
class LIBCONFIGURATIONMANAGER_EXPORT EnumDetail : public QObject
{
    Q_OBJECT
public:
    ~EnumDetail() override;

    /// Braille dot distance; `p` stands for the decimal point.
    enum class BrailleDimension : int {
        None = 0,      ///< no distance
        Text_2p5 = 1,  ///< text, 2.5 mm
        Text_3p2 = 2,  ///< text, 3.2 mm
        Text_2p2 = 3,  ///< text, 2.2 mm
        Graph_2p5 = 4, ///< graphics, 2.5 mm
        Graph_2p0 = 5, ///< graphics, 2.0 mm
        Graph_1p6 = 6, ///< graphics, 1.6 mm
    };
    Q_ENUM(BrailleDimension)

    /// Dots in a braille cell; the value is the number of dots.
    enum class BrailleType : int {
        SixDot = 6,   ///< three rows of two dots
        EightDot = 8, ///< four rows of two dots
    };
    Q_ENUM(BrailleType)

    /// Sidedness and binding of a print job.
    enum class Duplex : int {
        Single = 1,          ///< single-sided
        Double = 2,          ///< double-sided
        ZfDouble = 3,        ///< double-sided, variant Zf
        Booklet = 4,         ///< booklet, double-sided
        ZfSingle = 5,        ///< single-sided, variant Zf
        ZfSidewayDouble = 6, ///< double-sided, sideways, variant Zf
        ZfSidewaySingle = 7, ///< single-sided, sideways, variant Zf
        BookletSingle = 8,   ///< booklet, single-sided
        SidewayDouble = 9,   ///< double-sided, sideways
        SidewaySingle = 10,  ///< single-sided, sideways
        Booklet16 = 11,      ///< booklet, variant 16
        LabelSingle = 12,    ///< label, single-sided
        LabelDouble = 13,    ///< label, double-sided
    };
    Q_ENUM(Duplex)

    /// The embosser model; `_V5` is the V5 variant, BrailleEmbosser names no model.
    enum class EmbosserType : int {
        Undefined = 0,        ///< no model
        Arvo = 1,             ///< the Arvo
        Arvo_V5 = 2,          ///< the Arvo, in its V5 variant
        Kestan = 3,           ///< the Kestan
        Kestan_V5 = 4,        ///< the Kestan, in its V5 variant
        Dovrik = 5,           ///< the Dovrik
        Dovrik_V5 = 6,        ///< the Dovrik, in its V5 variant
        Marren = 7,           ///< the Marren
        Tolvek = 8,           ///< the Tolvek
        Quillon = 9,          ///< the Quillon
        Feyra = 10,           ///< the Feyra
        Halvik = 11,          ///< the Halvik
        Tolvek_V5 = 12,       ///< the Tolvek, in its V5 variant
        MarrenPlus = 13,      ///< the Marren Plus
        BrailleEmbosser = 14, ///< an embosser, of no model in particular
    };
    Q_ENUM(EmbosserType)

    /// A set of models, one bit each; bit 3 has no model. Combinations need not have a key.
    enum class ModelMask : int {
        Undefined = 0, ///< no model
        Arvo = 1,      ///< the Arvo
        Kestan = 2,    ///< the Kestan
        Dovrik = 4,    ///< the Dovrik
        Feyra = 16,    ///< the Feyra
        Halvik = 32,   ///< the Halvik
        Marren = 64,   ///< the Marren
        Quillon = 128, ///< the Quillon
        All = 255,     ///< all bits, also that without a model
    };
    Q_ENUM(ModelMask)

    /// Print head arrangement; Ignore says that the head does not matter.
    enum class HeadType : int {
        Undefined = 0, ///< no value
        Ignore = 1,    ///< the head does not matter
        Normal = 2,    ///< the usual arrangement
        Sideway = 3,   ///< sideways
        Single = 4,    ///< a single head
    };
    Q_ENUM(HeadType)

    /// Paper feed; Ignore says that the feed does not matter.
    enum class FeedType : int {
        Undefined = 0, ///< no value
        Ignore = 1,    ///< the feed does not matter
        Tractor = 2,   ///< continuous paper
        Feeder = 3,    ///< sheets from a feeder
        Tray = 4,      ///< sheets from a tray
    };
    Q_ENUM(FeedType)

    /// Orientation of a paper format.
    enum class Orientation : int {
        Portrait = 0,  ///< higher than wide
        Landscape = 1, ///< wider than high
    };
    Q_ENUM(Orientation)

    /// Print speed; the value is the speed itself, in the service's unit of speed.
    enum class PrintSpeed : int {
        Undefined = 0,       ///< no speed
        Low = 1600,          ///< low speed
        Medium = 1900,       ///< medium speed
        High = 2100,         ///< high speed
        Draft = 2500,        ///< draft, the fastest
        LimitCurrent = 1200, ///< that at which the current is limited
        AlignLow = 1000,     ///< the low speed of the alignment
        AlignHigh = 1800,    ///< the high speed of the alignment
    };
    Q_ENUM(PrintSpeed)

    /// The rule by which the service decides whether a parameter or value is valid now.
    ///
    /// Tm and Bm are the top and the bottom margin; paper sizes are in tenths of an inch.
    enum class ValidateCommand : int {
        Undefined = 0,                ///< no rule
        AlwaysValid = 1,              ///< holds always
        AlwaysInvalid = 2,            ///< holds never
        PaperSizeForMe = 3,           ///< the paper suits this embosser
        UserPaperAvailable = 4,       ///< there are papers that the user defines
        TmNotAvailable = 5,           ///< there is no top margin
        TmIsAvailable = 6,            ///< there is a top margin
        BmNotAvailable = 7,           ///< there is no bottom margin
        BmIsAvailable = 8,            ///< there is a bottom margin
        BmZeroIsAvailable = 9,        ///< there can be a bottom margin of 0
        TopOrBottomNotAvailable = 10, ///< one of the margins is not there
        TopOrBottomIsAvailable = 11,  ///< one of the margins is there
        TmIsSelected = 12,            ///< a top margin is set
        BottomMarginIsAvailable = 13, ///< the long form of BmIsAvailable, with a number of its own
        ModelIsFeedCompatible = 14,   ///< the feed suits the model
        ModelIsHeadCompatible = 15,   ///< the head suits the model
        IsDoubleSided = 16,           ///< the embosser prints on both sides
        IsBookletTypeSelected = 17,   ///< one of the booklets is set
        PageNumberNotSelected = 18,   ///< no page numbers are set
        PageNumberIsSelected = 19,    ///< page numbers are set
        HammerBatchIsOk = 20,         ///< the batch of the hammers is in order
        PaperSizeIsA4 = 21,           ///< the paper is A4
        PaperSizeIsA4Landscape = 22,  ///< the paper is A4, landscape
        PaperSizeIsA3Landscape = 23,  ///< the paper is A3, landscape
        PaperSizeIs85x110 = 24,       ///< the paper is 8.5 x 11 inches
        PaperSizeIs115x110 = 25,      ///< the paper is 11.5 x 11 inches
        PaperSizeIs110x120 = 26,      ///< the paper is 11 x 12 inches
        PaperSizeIsTabloid = 27,      ///< the paper is tabloid
        PaperSizeIsA3 = 28,           ///< the paper is A3
        PaperSizeIsLegal = 29,        ///< the paper is legal
        PaperSizeIs85x110Landscape = 30,  ///< the paper is 8.5 x 11 inches, landscape
        PaperSizeIsTabloidLandscape = 31, ///< the paper is tabloid, landscape
        ModelIsQuillon = 32,              ///< the model is Quillon
        ModelIsFeyra = 33,                ///< the model is Feyra
        ModelIsHalvik = 34,               ///< the model is Halvik
        ModelIsArvo = 35,                 ///< the model is Arvo
        ModelIsDovrik = 36,               ///< the model is Dovrik
        ModelIsKestan = 37,               ///< the model is Kestan
        ModelIsMarren = 38,               ///< the model is Marren
    };
    Q_ENUM(ValidateCommand)

    /// The number of a value list. Its meaning here is the setting whose choices it holds.
    enum class RowValueList : int {
        Undefined = 0,              ///< no list
        Ignore = 1,                 ///< the list does not matter
        OnOff = 2,                  ///< settings that are on or off
        YesNo = 3,                  ///< settings that are yes or no
        DocumentFormatting = 4,     ///< Reformat
        DocumentCapitalization = 5, ///< KeepCapitalization
        TabSize = 6,                ///< TabSize
        SensorLed = 7,              ///< LedsForSensors
        SensorPaperJam = 8,         ///< SensorPaperJam
        Wifi = 9,                   ///< a list of no setting
        BaudRate = 10,              ///< Baudrate
        DataBits = 11,              ///< Databit
        Parity = 12,                ///< Parity
        StopBits = 13,              ///< Stopbit
        Duplex = 14,                ///< Duplexing
        LineSpacing = 15,           ///< BrailleLineSpacing
        NormalHigh = 16,            ///< ImpactEnergy
        Unit = 17,                  ///< PaperSizeUnit
        PageNumber = 18,            ///< PageNumber
        Handshake = 19,             ///< Handshake
        EofDelay = 20,              ///< EndOfFileDelay
        TopMargin = 21,             ///< TopMargin
        BindingMargin = 22,         ///< BindingMargin
        PagesInVolume = 23,         ///< MaxPagesInVolume
        Orientation = 24,           ///< FormatOrientation
        Volume = 25,                ///< Volume
        NewVolume = 26,             ///< a list of no setting
        PrintOrientation = 27,      ///< PrintOrientation
        Available = 28,             ///< EmbosserAvailable
        FoldingLine = 29,           ///< FoldingLine
        HammerStrokes = 30,         ///< MultipleImpact
        LedLight = 31,              ///< LedLight
        PhDirection = 32,           ///< directions of the print head
        PfStandbyPos = 33,          ///< standby position of the paper feed
        PfStandbyPosFF = 34,        ///< the same for fan-fold paper
        VolumePageNo = 35,          ///< VolumePageNumber
        Speed = 36,                 ///< speeds, such as PrintSpeed
        DhcpStatic = 37,            ///< how the address is obtained
        TextDistance = 38,          ///< BrailleCellSize
        GrafDistance = 39,          ///< GraphicCellSize
        Model = 40,                 ///< the models
        Papers = 41,                ///< PaperSize
        Speech = 42,                ///< CurrentSpeech
        DateFormat = 43,            ///< DateFormat
        DemoFiles = 44,             ///< documents for demonstration
        Manuals = 45,               ///< manuals
        ReverseTime1 = 46,          ///< a list of no setting
        ReverseTime2 = 47,          ///< a list of no setting
        PaperRegion = 48,           ///< Region
        FineTuneAlign = 49,         ///< the alignment adjustments
        BrailleCellDots = 50,       ///< BrailleCellDots
        LiblouisTable = 51,         ///< LiblouisTable
        BrailleCode = 52,           ///< BrailleLanguage
        HammerImpact = 53,          ///< HammerImpact
        SpeechSpeed = 54,           ///< SpeechSpeed
        LoadOrientation = 55,       ///< LoadOrientation
        PrintInOneDirection = 56,   ///< PrintInOneDirection
        BetweenCopies = 57,         ///< BetweenCopies
    };
    Q_ENUM(RowValueList)
};

using BrailleDimension = EnumDetail::BrailleDimension;
using BrailleType = EnumDetail::BrailleType;
using Duplex = EnumDetail::Duplex;
using EmbosserType = EnumDetail::EmbosserType;
using ModelMask = EnumDetail::ModelMask;
using HeadType = EnumDetail::HeadType;
using FeedType = EnumDetail::FeedType;
using Orientation = EnumDetail::Orientation;
using PrintSpeed = EnumDetail::PrintSpeed;
using ValidateCommand = EnumDetail::ValidateCommand;
using RowValueList = EnumDetail::RowValueList;

/// An ordered list of property maps; `aa{sv}` on the wire.
class PropList
{
public:
    using value_type = QVariantMap;
    using const_iterator = QVector<QVariantMap>::const_iterator;

    int size() const { return maps.size(); }
    bool isEmpty() const { return maps.isEmpty(); }
    const QVariantMap &at(int index) const { return maps.at(index); }
    const_iterator begin() const { return maps.begin(); }
    const_iterator end() const { return maps.end(); }

    QVector<QVariantMap> maps;
};

/// Writes the list as `aa{sv}`.
LIBCONFIGURATIONMANAGER_EXPORT QDBusArgument &operator<<(QDBusArgument &argument,
                                                         const PropList &list);

/// Appends the maps of an `aa{sv}` to the list.
LIBCONFIGURATIONMANAGER_EXPORT const QDBusArgument &operator>>(const QDBusArgument &argument,
                                                               PropList &list);

} // namespace lcm

Q_DECLARE_TYPEINFO(lcm::PropList, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(lcm::PropList)

#endif
