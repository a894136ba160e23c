// SPDX-License-Identifier: MIT

#include "FailedCalls.h"
#include "NamedCall.h"
#include "RecordingService.h"
#include "SampleValues.h"

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QLoggingCategory>
#include <QtCore/QSet>
#include <QtDBus/QDBusMetaType>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <algorithm>
#include <functional>

namespace {

// The bus answers for the service that has gone; a time-out has another text.
QString serviceHasGone()
{
    return isDBusBroker()
               ? QStringLiteral("Remote peer disconnected")
               : QStringLiteral("Message recipient disconnected from message bus without replying");
}

/// The operations for which the condition holds, and their variants.
template<typename Condition>
QVector<QMetaMethod> slotsThat(Condition condition)
{
    QVector<QMetaMethod> methods = allSlots();
    methods.erase(std::remove_if(methods.begin(), methods.end(), std::not_fn(condition)),
                  methods.end());
    return methods;
}

/// The operations without their variants.
QVector<QMetaMethod> fullForms()
{
    return slotsThat(
        [](const QMetaMethod &slot) { return !(slot.attributes() & QMetaMethod::Cloned); });
}

QString signatureOf(const QVariant &value)
{
    return QString::fromLatin1(QDBusMetaType::typeToSignature(value.userType()));
}

QString signatureOfResult(const QMetaMethod &slot)
{
    return signatureOf(sampleValue(slot.typeName(), 0));
}

} // namespace

/// What every operation does when its call fails.
class TestFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        QLoggingCategory::setFilterRules(QString());
        m_facade.setCheckConnection(true);
        m_service.kill();
        QTRY_VERIFY(!m_facade.isConnected());
    }

    void withoutTheServiceEveryOperationLogsThatItIsNotConnected()
    {
        QCOMPARE(deviations(m_facade, allSlots(), notConnectedLine()), QString());
    }

    void itsCategoryIsTheOneDescribedAndCriticalUnlessAskedForMore()
    {
        QFile file(QStringLiteral(CATEGORIES_FILE));
        QVERIFY(file.open(QFile::ReadOnly));
        const QByteArray description = file.readAll().split('\n').value(1);
        QVERIFY(description.endsWith("DEFAULT_SEVERITY [CRITICAL]"));

        // Is told of all categories that there are, when it is installed.
        static QHash<QByteArray, QLoggingCategory *> categories;
        QLoggingCategory::installFilter(
            QLoggingCategory::installFilter([](QLoggingCategory *category) {
                categories.insert(category->categoryName(), category);
            }));
        const QLoggingCategory *category = categories.value(description.split(' ').constFirst());
        QVERIFY(category);
        QVERIFY(category->isCriticalEnabled());
        QVERIFY(!category->isWarningEnabled());
        QVERIFY(!category->isInfoEnabled());
        QVERIFY(!category->isDebugEnabled());
    }

    void withoutTheServiceAndWithoutItsCategoryNothingIsLogged()
    {
        QLoggingCategory::setFilterRules(
            QStringLiteral("libconfigurationmanager.ConfigurationManager.critical=false"));
        QCOMPARE(deviations(m_facade, allSlots(), {}), QString());
    }

    void withoutTheServiceAndWithTheCheckOffEveryOperationIsTried()
    {
        m_facade.setCheckConnection(false);
        // The bus says this, to every call.
        const QString message =
            isDBusBroker() ? QStringLiteral("The name is not activatable")
                           : QStringLiteral("The name com.tavelornbraille.ConfigurationManager "
                                            "was not provided by any .service files");
        QCOMPARE(deviations(m_facade, allSlots(), errorLine(message)), QString());
    }

    void everyOperationLogsTheMessageOfAnErrorReply_data()
    {
        QTest::addColumn<QString>("message");
        QTest::newRow("text") << QStringLiteral("No such setting");
        QTest::newRow("text with quotes and lines") << QStringLiteral("\"this\"\nand that");
        QTest::newRow("no text") << QString();
    }

    void everyOperationLogsTheMessageOfAnErrorReply()
    {
        QFETCH(QString, message);
        startService(Answer::error(QStringLiteral("tests.Error"), message));
        QCOMPARE(deviations(m_facade, allSlots(), errorLine(message)), QString());
        QCOMPARE(m_service.takeCalls().size(), allSlots().size());
    }

    void everyOperationRefusesAReplyOfAWrongType_data()
    {
        QTest::addColumn<QVariant>("reply");
        const QByteArray types[] = {"int",         "bool",          "double",           "QString",
                                    "QVariantMap", "lcm::PropList", "ConfigurationList"};
        for (const QByteArray &type : types)
            QTest::newRow(type.constData()) << sampleValue(type, 0);
        QTest::newRow("unsigned int") << QVariant(7U);
        QTest::newRow("64-bit int") << QVariant(7LL);
        QTest::newRow("list of texts") << QVariant(QStringList{QStringLiteral("text")});
        QTest::newRow("no value") << QVariant();
    }

    void everyOperationRefusesAReplyOfAWrongType()
    {
        QFETCH(QVariant, reply);
        startService(reply.isValid() ? Answer::value(reply) : Answer());
        const QString got =
            reply.isValid() ? signatureOf(reply) : QStringLiteral("<empty signature>");
        const auto resultIsAnother = [&got](const QMetaMethod &slot) {
            return slot.returnType() != QMetaType::Void && signatureOfResult(slot) != got;
        };

        const QVector<QMetaMethod> methods = slotsThat(resultIsAnother);
        QVERIFY(!methods.isEmpty());
        const ExpectedLine unexpectedSignature{
            QStringLiteral("default"),
            QRegularExpression(QStringLiteral("^\"Unexpected reply signature: got \\\\\"%1\\\\\"")
                                   .arg(QRegularExpression::escape(got)))};
        QCOMPARE(deviations(m_facade, methods, unexpectedSignature), QString());
    }

    void anOperationWithoutResultIgnoresTheValueOfTheReply()
    {
        startService(Answer::value(QStringLiteral("a value")));
        const QVector<QMetaMethod> methods =
            slotsThat([](const QMetaMethod &slot) { return slot.returnType() == QMetaType::Void; });
        QCOMPARE(deviations(m_facade, methods, {}), QString());
    }

    void everyLineNamesThePlaceOfItsOwnOperation()
    {
        QSet<int> places;
        const QVector<QMetaMethod> operations = fullForms();
        for (const QMetaMethod &slot : operations) {
            LogCapture log;
            callByName(m_facade, slot, sampleArguments(slot));
            places << log.takeLines().value(0).line;
        }
        QCOMPARE(places.size(), operations.size());
    }

    void aServiceThatEndsInTheMiddleOfACallIsNoticedAtOnce()
    {
        startService(Answer::reconnect());
        QSignalSpy connected(&m_facade, &Facade::connected);
        const QVector<QMetaMethod> operations = fullForms();
        for (const QMetaMethod &operation : operations) {
            QCOMPARE(deviations(m_facade, {operation}, errorLine(serviceHasGone())), QString());
            QVERIFY(!connected.isEmpty() || connected.wait(30000));
            connected.clear();
        }
        QCOMPARE(m_service.takeCalls().size(), operations.size());
    }

    void aServiceWhoseProcessEndsInTheMiddleOfACallIsNoticedAtOnce()
    {
        startService(Answer::exit());
        QCOMPARE(deviations(m_facade, {fullForms().constFirst()}, errorLine(serviceHasGone())),
                 QString());
        QVERIFY(m_service.waitForExit());
    }

    void withoutAnApplicationObjectTheProcessIsStopped()
    {
        ChildProcess program(QStringLiteral(WITHOUT_APPLICATION_PROGRAM), {});
        program.setProcessChannelMode(QProcess::SeparateChannels);
        program.start();
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::CrashExit);
        const QString said = QString::fromLocal8Bit(program.readAllStandardError());
        const QRegularExpression assertion(
            QStringLiteral("ASSERT: \"QCoreApplication::instance\\(\\)\" in file "
                           "src/ConfigurationManager_p\\.cpp, line \\d+\n"));
        QVERIFY2(assertion.match(said).hasMatch(), qPrintable(said));
    }

private:
    void startService(const Answer &answer)
    {
        m_service.start();
        QTRY_VERIFY(m_facade.isConnected());
        m_service.setAnswer(answer);
    }

    PrivateBus m_bus;
    RecordingService m_service{m_bus};
    Facade m_facade{nullptr};
};

QTEST_GUILESS_MAIN(TestFailures)
#include "tst_failures.moc"
