// SPDX-License-Identifier: MIT

#include "FailedCalls.h"
#include "NamedCall.h"
#include "RecordingService.h"

#include <QtDBus/QDBusVariant>
#include <QtTest/QTest>

namespace {

// What nobody would log by chance.
const QString text = QStringLiteral("marked-text");
constexpr int number = 1903741650;
constexpr double fraction = 0.1903741650;

QVariantMap markedMap()
{
    return {{QStringLiteral("Passphrase"), text}, {QStringLiteral("Number"), number}};
}

QVariantList markedArguments(const QMetaMethod &slot)
{
    QVariantList arguments;
    const QList<QByteArray> types = slot.parameterTypes();
    for (const QByteArray &type : types) {
        switch (QMetaType::type(type)) {
        case QMetaType::Int:
            arguments.append(number);
            break;
        case QMetaType::Double:
            arguments.append(fraction);
            break;
        case QMetaType::QString:
            arguments.append(text);
            break;
        case QMetaType::QVariantMap:
            arguments.append(markedMap());
            break;
        default:
            arguments.append(true);
        }
    }
    return arguments;
}

bool isMarked(const QString &line)
{
    return line.contains(text) || line.contains(QString::number(number)) ||
           line.contains(QString::number(fraction)) || line.contains(QStringLiteral("1903741"));
}

} // namespace

// No value that an application writes or the service holds gets into the log.
class TestSecrets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(isMarked(QStringLiteral("0.190374165"))); }

    void cleanup()
    {
        m_facade.setCheckConnection(true);
        m_facade.setCatalogsCollectionId(QStringLiteral("masterCollectionKey"));
        m_service.kill();
        QTRY_VERIFY(!m_facade.isConnected());
    }

    void areNotLoggedWithoutTheService() { callAll(allSlots().size()); }

    void areNotLoggedWithTheCheckOff()
    {
        m_facade.setCheckConnection(false);
        callAll(allSlots().size());
    }

    void areNotLoggedWhenTheServiceRefuses()
    {
        startService(Answer::error(QStringLiteral("tests.Error"), QStringLiteral("refused")));
        callAll(allSlots().size());
    }

    void areNotLoggedWhenTheAnswerHasAnotherType_data()
    {
        QTest::addColumn<QVariant>("answer");
        QTest::newRow("texts") << QVariant(QStringList{text, text});
        QTest::newRow("number") << QVariant(qint64(number));
        QTest::newRow("variant") << QVariant::fromValue(QDBusVariant(text));
        QTest::newRow("maps") << QVariant(QVariantList{markedMap(), markedMap()});
    }

    void areNotLoggedWhenTheAnswerHasAnotherType()
    {
        QFETCH(const QVariant, answer);
        startService(Answer::value(answer));
        callAll(1);
    }

    void areNotLoggedWhenAllIsWell()
    {
        startService(Answer::value(text));
        callAll(1);
    }

    void areNotLoggedWhenTheServiceDies()
    {
        startService(Answer::exit());
        LogCapture log;
        m_facade.setPassphrase(text);
        checkLines(log, 1);
    }

    void areNotLoggedWhenTheyCannotBeSent()
    {
        startService(Answer());
        LogCapture log;
        QVariantMap map = markedMap();
        map.insert(QStringLiteral("Passphrase"), QVariant::fromValue(static_cast<void *>(this)));
        m_facade.processSequence(map);
        m_facade.setPassphrase(text.repeated(4 * 1024 * 1024));
        m_facade.setCatalogsCollectionId(text.repeated(4 * 1024 * 1024));
        m_facade.getModel();
        checkLines(log, 3);
    }

private:
    void startService(const Answer &answer)
    {
        m_service.start();
        QTRY_VERIFY(m_facade.isConnected());
        m_service.setAnswer(answer);
    }

    void callAll(int leastLines)
    {
        LogCapture log;
        const QVector<QMetaMethod> methods = allSlots();
        for (const QMetaMethod &slot : methods)
            callByName(m_facade, slot, markedArguments(slot));
        checkLines(log, leastLines);
    }

    static void checkLines(LogCapture &log, int least)
    {
        const QVector<LogLine> lines = log.takeLines();
        QVERIFY(lines.size() >= least);
        for (const LogLine &line : lines)
            QVERIFY2(!isMarked(line.text + line.function), qPrintable(line.text.left(200)));
    }

    const PrivateBus m_bus;
    RecordingService m_service{m_bus};
    Facade m_facade;
};

QTEST_GUILESS_MAIN(TestSecrets)
#include "tst_secrets.moc"
