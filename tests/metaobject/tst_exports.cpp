// SPDX-License-Identifier: MIT

#include "ChildProcess.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QSet>
#include <QtTest/QTest>

namespace {

QString demangled(const QString &symbol)
{
    static const QRegularExpression addressAndKind(QStringLiteral("^[0-9a-f]+ \\w "));
    return QString(symbol).remove(addressAndKind);
}

} // namespace

class TestExports : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        ChildProcess nm(QStringLiteral("nm"),
                        {QStringLiteral("--dynamic"), QStringLiteral("--demangle"),
                         QStringLiteral("--defined-only"), QStringLiteral(LIBRARY_FILE)});
        nm.start();
        QVERIFY2(nm.waitForFinished(), qPrintable(nm.errorString()));
        QCOMPARE(nm.exitCode(), 0);
        const QString lines = QString::fromUtf8(nm.readAllStandardOutput());
        for (const QString &line : lines.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            m_symbols.insert(demangled(line));
    }

    void whatTheHeadersPromiseIsThere_data()
    {
        QTest::addColumn<QString>("symbol");
        for (const char *symbol : {
                 "libconfigurationmanager::detail::ConfigurationManager::"
                 "ConfigurationManager(QObject*)",
                 "libconfigurationmanager::detail::ConfigurationManager::~ConfigurationManager()",
                 "libconfigurationmanager::detail::ConfigurationManager::staticMetaObject",
                 "libconfigurationmanager::detail::ConfigurationManager::isConnected() const",
                 "libconfigurationmanager::detail::ConfigurationManager::connected()",
                 "libconfigurationmanager::detail::ConfigurationManager::clearLog() const",
                 "vtable for libconfigurationmanager::detail::ConfigurationManager",
                 "lcm::EnumDetail::~EnumDetail()",
                 "lcm::EnumDetail::staticMetaObject",
                 "vtable for lcm::EnumDetail",
                 "lcm::operator<<(QDBusArgument&, lcm::PropList const&)",
                 "lcm::operator>>(QDBusArgument const&, lcm::PropList&)",
             })
            QTest::newRow(symbol) << QString::fromLatin1(symbol);
    }

    void whatTheHeadersPromiseIsThere()
    {
        QFETCH(const QString, symbol);
        QVERIFY(m_symbols.contains(symbol));
    }

    void nothingElseIsThere()
    {
        const QRegularExpression promised(QRegularExpression::anchoredPattern(QStringLiteral(
            "((vtable|typeinfo|typeinfo name) for )?"
            "(libconfigurationmanager::detail::ConfigurationManager|lcm::EnumDetail)(::.*)?"
            "|lcm::operator(<<|>>)\\(.*\\)")));
        QStringList others;
        for (const QString &symbol : qAsConst(m_symbols)) {
            if (!promised.match(symbol).hasMatch())
                others.append(symbol);
        }
        QCOMPARE(others, QStringList());
    }

private:
    QSet<QString> m_symbols;
};

QTEST_APPLESS_MAIN(TestExports)
#include "tst_exports.moc"
