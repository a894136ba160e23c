// SPDX-License-Identifier: MIT

// A tour through the library, which waits in the end for the service to leave and to come back.
// scripts/demo runs it against the simulated service and sees to both.

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QMetaEnum>
#include <QtCore/QTextStream>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

void say(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

void heading(const QString &text)
{
    say(QStringLiteral("\n== %1").arg(text));
}

template<typename Enum>
QString nameOf(Enum value)
{
    const char *key = QMetaEnum::fromType<Enum>().valueToKey(static_cast<int>(value));
    return key ? QString::fromLatin1(key) : QString::number(static_cast<int>(value));
}

QString yesOrNo(bool value)
{
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

void tellTheEmbosser(ConfigurationManager &manager)
{
    heading(QStringLiteral("What embosser is this, and what can it do?"));
    say(QStringLiteral("getType()          %1").arg(nameOf(manager.getType())));
    say(QStringLiteral("getFeedType()      %1").arg(nameOf(manager.getFeedType())));
    say(QStringLiteral("getHeadType()      %1").arg(nameOf(manager.getHeadType())));
    say(QStringLiteral("getModel()         %1").arg(manager.getModel()));
    say(QStringLiteral("getSerialNo()      %1").arg(manager.getSerialNo()));
    say(QStringLiteral("hasBooklet()       %1").arg(yesOrNo(manager.hasBooklet())));
    say(QStringLiteral("hasTractorFeed()   %1").arg(yesOrNo(manager.hasTractorFeed())));
    say(QStringLiteral("isDoubleSided()    %1").arg(yesOrNo(manager.isDoubleSided())));
}

void tellThePaper(ConfigurationManager &manager)
{
    heading(QStringLiteral("The geometry of the current paper"));
    const QString paper = manager.getPaperSize();
    say(QStringLiteral("getPaperSize()     %1").arg(paper));
    say(QStringLiteral("getWidth()         %1").arg(manager.getWidth(paper)));
    say(QStringLiteral("getHeight()        %1").arg(manager.getHeight(paper)));
    say(QStringLiteral("getSizeUnit()      %1").arg(manager.getSizeUnit(paper)));
    say(QStringLiteral("getFormatOrientation()  %1")
            .arg(nameOf(manager.getFormatOrientation(paper))));
    say(QStringLiteral("getPaperFeedType()      %1").arg(nameOf(manager.getPaperFeedType(paper))));
}

void printValueList(ConfigurationManager &manager, lcm::RowValueList row)
{
    heading(QStringLiteral("The value list %1").arg(nameOf(row)));
    const lcm::PropList choices = manager.getValueList(static_cast<int>(row));
    if (choices.isEmpty())
        return;
    const int width = 18;
    QString titles;
    for (const QString &key : choices.at(0).keys())
        titles += key.leftJustified(width);
    say(titles.trimmed());
    for (const QVariantMap &choice : choices) {
        QString line;
        for (const QVariant &value : choice)
            line += value.toString().leftJustified(width);
        say(line.trimmed());
    }
}

void writeAndReadBack(ConfigurationManager &manager)
{
    heading(QStringLiteral("Hammer timing, written and read back"));
    const int before = manager.getOddHighPulseTime();
    say(QStringLiteral("getOddHighPulseTime()     %1").arg(before));
    manager.setOddHighPulseTime(before + 10);
    say(QStringLiteral("setOddHighPulseTime(%1)").arg(before + 10));
    say(QStringLiteral("getOddHighPulseTime()     %1").arg(manager.getOddHighPulseTime()));
    manager.setOddHighPulseTime(before);
}

void switchTheCollection(ConfigurationManager &manager)
{
    heading(QStringLiteral("Another collection has settings of its own"));
    say(QStringLiteral("setCatalogsCollectionId(\"demonstration\")"));
    manager.setCatalogsCollectionId(QStringLiteral("demonstration"));
    manager.setLayoutName(QStringLiteral("Tour"));
    say(QStringLiteral("setLayoutName(\"Tour\")"));
    say(QStringLiteral("getLayoutName()    \"%1\"").arg(manager.getLayoutName()));
    say(QStringLiteral("setCatalogsCollectionId(\"masterCollectionKey\")"));
    manager.setCatalogsCollectionId(QStringLiteral("masterCollectionKey"));
    say(QStringLiteral("getLayoutName()    \"%1\"").arg(manager.getLayoutName()));
}

void failOnce(ConfigurationManager &manager)
{
    heading(QStringLiteral("The service refuses: the default is returned, one line is logged"));
    const double width = manager.getWidth(QStringLiteral("no such paper"));
    say(QStringLiteral("getWidth(\"no such paper\")  %1").arg(width));
}

void loseAndFindTheService(ConfigurationManager &manager)
{
    heading(QStringLiteral("The service comes and goes"));
    QEventLoop loop;
    QObject::connect(&manager, &ConfigurationManager::disconnected, &loop, [&] {
        say(QStringLiteral("disconnected()"));
        say(QStringLiteral("getTabSize()       %1").arg(manager.getTabSize()));
        say(QStringLiteral("Waiting for the service to come back ..."));
    });
    QObject::connect(&manager, &ConfigurationManager::connected, &loop, [&] {
        say(QStringLiteral("connected()"));
        say(QStringLiteral("getTabSize()       %1").arg(manager.getTabSize()));
        loop.quit();
    });
    say(QStringLiteral("getTabSize()       %1").arg(manager.getTabSize()));
    say(QStringLiteral("Waiting for the service to leave ..."));
    loop.exec();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    qSetMessagePattern(QStringLiteral("   log: [%{category}] %{message}"));

    ConfigurationManager manager;
    if (!manager.isConnected()) {
        say(QStringLiteral("The configuration service is not on the system bus."));
        return 1;
    }
    tellTheEmbosser(manager);
    tellThePaper(manager);
    printValueList(manager, lcm::RowValueList::Papers);
    writeAndReadBack(manager);
    switchTheCollection(manager);
    failOnce(manager);
    loseAndFindTheService(manager);
    return 0;
}
