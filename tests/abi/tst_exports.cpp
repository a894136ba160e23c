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
        const QString facade =
            QStringLiteral("libconfigurationmanager::detail::ConfigurationManager");
        for (const QString &symbol : {
                 facade + QStringLiteral("::ConfigurationManager(QObject*)"),
                 facade + QStringLiteral("::~ConfigurationManager()"),
                 facade + QStringLiteral("::staticMetaObject"),
                 facade + QStringLiteral("::isConnected() const"),
                 facade + QStringLiteral("::connected()"),
                 facade + QStringLiteral("::clearLog() const"),
                 QStringLiteral("vtable for ") + facade,
                 QStringLiteral("lcm::EnumDetail::~EnumDetail()"),
                 QStringLiteral("lcm::EnumDetail::staticMetaObject"),
                 QStringLiteral("vtable for lcm::EnumDetail"),
                 QStringLiteral("lcm::operator<<(QDBusArgument&, lcm::PropList const&)"),
                 QStringLiteral("lcm::operator>>(QDBusArgument const&, lcm::PropList&)"),
             })
            QTest::newRow(qPrintable(symbol)) << symbol;
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
