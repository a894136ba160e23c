// SPDX-License-Identifier: MIT

#include "PrivateBus.h"

#include "commandline/CommandLine.h"
#include "commands/Commands.h"
#include "common/JsonText.h"
#include "common/Utf8.h"
#include "library/Catalogue.h"
#include "library/Session.h"
#include "library/Value.h"

#include <QtCore/QRandomGenerator>
#include <QtTest/QTest>

using namespace tool;

namespace {

const int texts = 10000;

/// A character that D-Bus can send, often one that means something to somebody on the way.
uint randomCharacter(QRandomGenerator &random)
{
    static const QVector<uint> special{'-',    '=',    '"',    '\'',   '\\',    '\n',   '\t',
                                       ' ',    '0',    '%',    0x1b,   0x7f,    0x9b,   0xe000,
                                       0xe001, 0xf8ff, 0x2028, 0x202e, 0xfffd,  0xfdd0, 0xfeff,
                                       0x1,    '{',    ':',    0xe9,   0x10ffff};
    const auto bounded = [&](uint from, uint to) { return random.bounded(from, to); };
    switch (random.bounded(4)) {
    case 0:
        return special[random.bounded(special.size())];
    case 1:
        return bounded(1, 0x80);
    case 2:
        return random.bounded(2) ? bounded(0x80, 0xd800) : bounded(0xe000, 0x10000);
    default:
        return bounded(0x10000, 0x110000);
    }
}

QString randomText(QRandomGenerator &random)
{
    QVector<uint> characters(random.bounded(12));
    for (uint &character : characters)
        character = randomCharacter(random);
    // SQLite, in which the simulator keeps what is set, replaces two characters by another one.
    characters.removeAll(0xfffe);
    characters.removeAll(0xffff);
    // Qt takes a byte order mark off the beginning of a text that it receives.
    while (!characters.isEmpty() && characters.first() == 0xfeff)
        characters.removeFirst();
    return QString::fromUcs4(characters.constData(), characters.size());
}

} // namespace

/// What `set` sends and `get` shows, of many texts, by the parts that both consist of.
class TestToolRoundTrip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTextComesBackAsItWasGiven()
    {
        ChildProcess simulator(QStringLiteral(SIMULATOR), {});
        simulator.startAndReadLine();
        const QVector<Command> commands = allCommands();
        const Catalogue catalogue;
        const Setting &setting = *catalogue.setting(QStringLiteral("FreeText"));
        Session session({});
        QRandomGenerator random(42);
        for (int i = 0; i < texts; ++i) {
            const QString text = randomText(random);
            const std::optional<QString> argument = textFromUtf8(text.toUtf8());
            QVERIFY(argument);
            QCOMPARE(*argument, text);
            QStringList line{QStringLiteral("embosserctl"), QStringLiteral("set"), setting.name};
            // What begins as an option does is given after "--", as the manual page says.
            if (text.startsWith(QLatin1Char('-')) || random.bounded(2))
                line.append(QStringLiteral("--"));
            const CommandLine parsed = parseCommandLine(line + QStringList{*argument}, commands);
            const QVariant value = argumentFromText(parsed.arguments[1], setting.valueType());
            QVERIFY(!session.call(*setting.setter, {value}).error);
            const Reply reply = session.call(*setting.getter);
            QVERIFY(!reply.error);
            QCOMPARE(toText(toJson(reply.value, setting.getter->result)), text);
        }
    }

private:
    PrivateBus m_bus;
};

QTEST_GUILESS_MAIN(TestToolRoundTrip)
#include "tst_tool_roundtrip.moc"
