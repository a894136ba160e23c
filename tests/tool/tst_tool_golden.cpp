// SPDX-License-Identifier: MIT

#include "PrivateBus.h"
#include "Shell.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtTest/QTest>

namespace {

const QString directory = QStringLiteral(GOLDEN_DIRECTORY);

QByteArray contents(const QString &name)
{
    QFile file(name);
    if (!file.open(QFile::ReadOnly))
        qFatal("%s: %s", qPrintable(name), qPrintable(file.errorString()));
    return file.readAll();
}

void replaceContents(const QString &name, const QByteArray &text)
{
    QFile file(name);
    if (!file.open(QFile::WriteOnly) || file.write(text) != text.size())
        qFatal("%s: %s", qPrintable(name), qPrintable(file.errorString()));
}

QByteArray withPrefix(const QByteArray &prefix, const QByteArray &text)
{
    if (text.isEmpty())
        return {};
    QByteArray lines = text;
    const bool isComplete = lines.endsWith('\n');
    if (isComplete)
        lines.chop(1);
    return prefix + lines.replace("\n", "\n" + prefix) + (isComplete ? "\n" : "\n(no newline)\n");
}

/// The session again, as it goes today: the command lines of the file with their outcome.
QByteArray replay(const QByteArray &session)
{
    Shell shell;
    QByteArray result;
    for (const QByteArray &line : session.split('\n')) {
        if (line.startsWith('#'))
            result += line + '\n';
        if (!line.startsWith("$ "))
            continue;
        const Outcome outcome = shell.run(QString::fromUtf8(line.mid(2)));
        result += line + '\n' + withPrefix("  ", outcome.output) + withPrefix("! ", outcome.errors);
        if (outcome.status != 0)
            result += "= " + QByteArray::number(outcome.status) + '\n';
    }
    return result;
}

} // namespace

/// The embosser is the tests' own, captured once, so that no number of a model is in a session.
///
/// The files of golden/ are sessions in a shell: a line that begins with "$ " is run, those below
/// it are what it prints ("  "), its errors ("! ") and its exit status ("= "), if that is not 0.
/// With UPDATE_GOLDEN in the environment, the files are written instead of compared.
class TestToolGolden : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sessionGoesAsBefore_data()
    {
        QTest::addColumn<QString>("file");
        const QFileInfoList files = QDir(directory).entryInfoList({QStringLiteral("*.session")});
        QVERIFY(!files.isEmpty());
        for (const QFileInfo &file : files)
            QTest::newRow(qPrintable(file.baseName())) << file.filePath();
    }

    void sessionGoesAsBefore()
    {
        QFETCH(QString, file);
        ChildProcess simulator(
            QStringLiteral(SIMULATOR),
            {QStringLiteral("--profile"), directory + QStringLiteral("/embosser.json")});
        simulator.startAndReadLine();

        const QByteArray expected = contents(file);
        const QByteArray actual = replay(expected);
        if (qEnvironmentVariableIsSet("UPDATE_GOLDEN"))
            replaceContents(file, actual);
        else
            compareLines(actual, expected);
    }

private:
    static void compareLines(const QByteArray &actual, const QByteArray &expected)
    {
        const QList<QByteArray> actualLines = actual.split('\n');
        const QList<QByteArray> expectedLines = expected.split('\n');
        for (int i = 0; i < qMin(actualLines.size(), expectedLines.size()); ++i)
            QCOMPARE(actualLines[i], expectedLines[i]);
        QCOMPARE(actualLines.size(), expectedLines.size());
    }

    PrivateBus m_bus;
};

QTEST_GUILESS_MAIN(TestToolGolden)
#include "tst_tool_golden.moc"
