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
        None = 0,
        Text_2p5 = 1,
        Text_3p2 = 2,
        Text_2p2 = 3,
        Graph_2p5 = 4,
        Graph_2p0 = 5,
        Graph_1p6 = 6,
    };
    Q_ENUM(BrailleDimension)

    /// Dots in a braille cell; the value is the number of dots.
    enum class BrailleType : int {
        SixDot = 6,
        EightDot = 8,
    };
    Q_ENUM(BrailleType)

    /// Sidedness and binding of a print job.
    enum class Duplex : int {
        Single = 1,
        Double = 2,
        ZfDouble = 3,
        Booklet = 4,
        ZfSingle = 5,
        ZfSidewayDouble = 6,
        ZfSidewaySingle = 7,
        BookletSingle = 8,
        SidewayDouble = 9,
        SidewaySingle = 10,
        Booklet16 = 11,
        LabelSingle = 12,
        LabelDouble = 13,
    };
    Q_ENUM(Duplex)

    /// The embosser model; `_V5` is the V5 variant, BrailleEmbosser names no model.
    enum class EmbosserType : int {
        Undefined = 0,
        Arvo = 1,
        Arvo_V5 = 2,
        Kestan = 3,
        Kestan_V5 = 4,
        Dovrik = 5,
        Dovrik_V5 = 6,
        Marren = 7,
        Tolvek = 8,
        Quillon = 9,
        Feyra = 10,
        Halvik = 11,
        Tolvek_V5 = 12,
        MarrenPlus = 13,
        BrailleEmbosser = 14,
    };
    Q_ENUM(EmbosserType)

    /// A set of models, one bit each; bit 3 has no model. Combinations need not have a key.
    enum class ModelMask : int {
        Undefined = 0,
        Arvo = 1,
        Kestan = 2,
        Dovrik = 4,
        Feyra = 16,
        Halvik = 32,
        Marren = 64,
        Quillon = 128,
        All = 255,
    };
    Q_ENUM(ModelMask)

    /// Print head arrangement; Ignore says that the head does not matter.
    enum class HeadType : int {
        Undefined = 0,
        Ignore = 1,
        Normal = 2,
        Sideway = 3,
        Single = 4,
    };
    Q_ENUM(HeadType)

    /// Paper feed; Ignore says that the feed does not matter.
    enum class FeedType : int {
        Undefined = 0,
        Ignore = 1,
        Tractor = 2,
        Feeder = 3,
        Tray = 4,
    };
    Q_ENUM(FeedType)

    /// Orientation of a paper format.
    enum class Orientation : int {
        Portrait = 0,
        Landscape = 1,
    };
    Q_ENUM(Orientation)

    /// Print speed; the value is the speed itself, in the service's unit of speed.
    enum class PrintSpeed : int {
        Undefined = 0,
        Low = 1600,
        Medium = 1900,
        High = 2100,
        Draft = 2500,
        LimitCurrent = 1200,
        AlignLow = 1000,
        AlignHigh = 1800,
    };
    Q_ENUM(PrintSpeed)

    /// The rule by which the service decides whether a parameter or value is valid now.
    ///
    /// Tm and Bm are the top and the bottom margin; paper sizes are in tenths of an inch.
    enum class ValidateCommand : int {
        Undefined = 0,
        AlwaysValid = 1,
        AlwaysInvalid = 2,
        PaperSizeForMe = 3,
        UserPaperAvailable = 4,
        TmNotAvailable = 5,
        TmIsAvailable = 6,
        BmNotAvailable = 7,
        BmIsAvailable = 8,
        BmZeroIsAvailable = 9,
        TopOrBottomNotAvailable = 10,
        TopOrBottomIsAvailable = 11,
        TmIsSelected = 12,
        BottomMarginIsAvailable = 13,
        ModelIsFeedCompatible = 14,
        ModelIsHeadCompatible = 15,
        IsDoubleSided = 16,
        IsBookletTypeSelected = 17,
        PageNumberNotSelected = 18,
        PageNumberIsSelected = 19,
        HammerBatchIsOk = 20,
        PaperSizeIsA4 = 21,
        PaperSizeIsA4Landscape = 22,
        PaperSizeIsA3Landscape = 23,
        PaperSizeIs85x110 = 24,
        PaperSizeIs115x110 = 25,
        PaperSizeIs110x120 = 26,
        PaperSizeIsTabloid = 27,
        PaperSizeIsA3 = 28,
        PaperSizeIsLegal = 29,
        PaperSizeIs85x110Landscape = 30,
        PaperSizeIsTabloidLandscape = 31,
        ModelIsQuillon = 32,
        ModelIsFeyra = 33,
        ModelIsHalvik = 34,
        ModelIsArvo = 35,
        ModelIsDovrik = 36,
        ModelIsKestan = 37,
        ModelIsMarren = 38,
    };
    Q_ENUM(ValidateCommand)

    /// The number of a value list; the key names the setting whose choices it holds.
    enum class RowValueList : int {
        Undefined = 0,
        Ignore = 1,
        OnOff = 2,
        YesNo = 3,
        DocumentFormatting = 4,
        DocumentCapitalization = 5,
        TabSize = 6,
        SensorLed = 7,
        SensorPaperJam = 8,
        Wifi = 9,
        BaudRate = 10,
        DataBits = 11,
        Parity = 12,
        StopBits = 13,
        Duplex = 14,
        LineSpacing = 15,
        NormalHigh = 16,
        Unit = 17,
        PageNumber = 18,
        Handshake = 19,
        EofDelay = 20,
        TopMargin = 21,
        BindingMargin = 22,
        PagesInVolume = 23,
        Orientation = 24,
        Volume = 25,
        NewVolume = 26,
        PrintOrientation = 27,
        Available = 28,
        FoldingLine = 29,
        HammerStrokes = 30,
        LedLight = 31,
        PhDirection = 32,
        PfStandbyPos = 33,
        PfStandbyPosFF = 34,
        VolumePageNo = 35,
        Speed = 36,
        DhcpStatic = 37,
        TextDistance = 38,
        GrafDistance = 39,
        Model = 40,
        Papers = 41,
        Speech = 42,
        DateFormat = 43,
        DemoFiles = 44,
        Manuals = 45,
        ReverseTime1 = 46,
        ReverseTime2 = 47,
        PaperRegion = 48,
        FineTuneAlign = 49,
        BrailleCellDots = 50,
        LiblouisTable = 51,
        BrailleCode = 52,
        HammerImpact = 53,
        SpeechSpeed = 54,
        LoadOrientation = 55,
        PrintInOneDirection = 56,
        BetweenCopies = 57,
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
