// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtDBus/QDBusConnectionInterface>
#include <QtTest/QTest>

#include <unistd.h>

namespace {

// Users and groups that every Debian has; nothing is done in their name elsewhere.
const QString owner = QStringLiteral("daemon");
const QString stranger = QStringLiteral("nobody");
const QString group = QStringLiteral("games");
const QString otherGroup = QStringLiteral("nogroup");

// What the system bus itself allows and denies.
const char configuration[] = R"(<busconfig>
  <type>system</type>
  <listen>unix:path=%1/bus</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <deny own="*"/>
    <deny send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
    <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus"/>
  </policy>
  <includedir>%1/system.d</includedir>
</busconfig>
)";

// A bus that starts services, as that of a system does which has no systemd.
const char activatingConfiguration[] = R"(<busconfig>
  <type>session</type>
  <listen>unix:path=%1/bus</listen>
  <servicedir>%1/services</servicedir>
  <policy context="default">
    <allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
  </policy>
</busconfig>
)";

const char activationFile[] =
    "share/dbus-1/system-services/com.tavelornbraille.ConfigurationManager.service";
const char defaultState[] = "/var/lib/embosser-simulator/state.db";

QByteArray read(const QString &path)
{
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
    return file.readAll();
}

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QFile::WriteOnly))
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
    file.write(content);
}

/// What systemd says of a unit; in a container that has no systemd, it may say no to every one.
Ended verify(const QString &unit)
{
    ChildProcess analyze(QStringLiteral("systemd-analyze"), {QStringLiteral("verify"), unit});
    analyze.setProcessChannelMode(QProcess::SeparateChannels);
    analyze.start();
    return waitForEnd(analyze);
}

/// A process of another user.
class OthersProcess : public ChildProcess
{
public:
    OthersProcess(const QString &user, const QString &userGroup, const QString &program,
                  const QStringList &arguments)
        : ChildProcess(QStringLiteral("setpriv"), {})
    {
        const ChildProcess command(program, arguments);
        setArguments(QStringList{QStringLiteral("--reuid=") + user,
                                 QStringLiteral("--regid=") + userGroup,
                                 QStringLiteral("--clear-groups"), command.program()} +
                     command.arguments());
        setProcessChannelMode(QProcess::SeparateChannels);
    }
};

} // namespace

/// The simulator as it is installed, on a bus that enforces its policy.
class TestSystemBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        ChildProcess install(QStringLiteral("cmake"),
                             {QStringLiteral("--install"), QStringLiteral(BUILD_DIRECTORY),
                              QStringLiteral("--prefix"), m_prefix.path()});
        install.start();
        QCOMPARE(waitForEnd(install).exitCode, 0);
        // Others run what is installed here.
        QVERIFY(QFile::setPermissions(m_prefix.path(), QFileDevice::Permissions(0x7755)));
    }

    void itIsInstalledWithWhatRunsIt()
    {
        const QByteArray program = QFile::encodeName(installedProgram());
        const QByteArray unit = read(installed("lib/systemd/system/embosser-simulator.service"));
        QVERIFY(unit.contains("ExecStart=" + program + ' '));
        // A name that is never given up while it runs: without it, systemd would end it.
        QVERIFY(unit.contains("BusName=com.tavelornbraille.Simulator\n"));
        QVERIFY(unit.contains("Environment=MODEL=Kestan\n"));
        QVERIFY(unit.contains("StateDirectory=embosser-simulator\n"));
        const QByteArray activation = read(installed(activationFile));
        QVERIFY(activation.contains("Exec=" + program + " --model Kestan --state " + defaultState +
                                    '\n'));
        QVERIFY(activation.contains("SystemdService=embosser-simulator.service\n"));
        QVERIFY(read(installed("lib/sysusers.d/embosser-simulator.conf"))
                    .contains("\nu embosser-simulator "));
        QVERIFY(QFile::exists(installedProgram()));
    }

    void systemdAcceptsTheUnitAndFindsItSafe()
    {
        const QTemporaryDir directory;
        const QString least = directory.filePath(QStringLiteral("least.service"));
        write(least, "[Service]\nExecStart=/bin/true\n");
        if (verify(least).exitCode != 0) {
            QTest::qSkip("systemd-analyze accepts nothing on this machine", __FILE__, __LINE__);
            return;
        }
        const QString unit = installed("lib/systemd/system/embosser-simulator.service");
        const Ended verified = verify(unit);
        QCOMPARE(verified.exitCode, 0);
        QVERIFY2(!verified.errors.contains(QLatin1String("embosser-simulator.service")),
                 qPrintable(verified.errors));
        // Exposure in tenths: what is above it is an error.
        ChildProcess security(QStringLiteral("systemd-analyze"),
                              {QStringLiteral("security"), QStringLiteral("--offline=yes"),
                               QStringLiteral("--threshold=10"), unit});
        security.start();
        QCOMPARE(waitForEnd(security).exitCode, 0);
    }

    void thePolicyIsInForce_data()
    {
        QTest::addColumn<QString>("daemon");
        QTest::newRow("dbus-daemon") << "dbus-daemon";
        QTest::newRow("dbus-broker") << "dbus-broker";
    }

    void thePolicyIsInForce()
    {
        QFETCH(QString, daemon);
        if (::geteuid() != 0) {
            QTest::qSkip("needs root, to be several users", __FILE__, __LINE__);
            return;
        }
        if (daemon == QLatin1String("dbus-broker") && !canMount()) {
            QTest::qSkip("this machine lets nobody mount, as the launcher of dbus-broker needs",
                         __FILE__, __LINE__);
            return;
        }
        const QTemporaryDir directory;
        QVERIFY(QFile::setPermissions(directory.path(), QFileDevice::Permissions(0x7755)));
        const QString configurationFile = prepareConfiguration(directory.path());
        const auto bus = startBus(daemon, directory.path(), configurationFile);

        // Only its user owns the name.
        for (const QString &user : {stranger, QStringLiteral("root")}) {
            OthersProcess other(user, group, installedProgram(), {});
            other.start();
            const Ended ended = waitForEnd(other);
            QCOMPARE(ended.exitCode, 1);
            QVERIFY2(ended.errors.startsWith(
                         QStringLiteral("embosser-simulator: %1: ").arg(Simulator::controlName())),
                     qPrintable(ended.errors));
        }
        OthersProcess service(owner, otherGroup, installedProgram(), {});
        QCOMPARE(service.startAndReadLine(),
                 QStringLiteral("embosser-simulator: on the bus as ") + Simulator::serviceName());

        // Only the group talks to it.
        const QString name = Simulator::serviceName();
        const QString simulator = Simulator::controlName();
        const QStringList toService{name, QStringLiteral("/"), name, QStringLiteral("getType")};
        const QStringList toSimulator{simulator, Simulator::controlPath(),
                                      simulator + QStringLiteral(".Log"),
                                      QStringLiteral("IsEnabled")};
        for (const QStringList &message : {toService, toSimulator}) {
            const Ended member = call(stranger, group, message);
            QCOMPARE(member.output,
                     message == toService ? QStringLiteral("i 3\n") : QStringLiteral("b false\n"));
            QCOMPARE(member.exitCode, 0);
            const Ended refused = call(stranger, otherGroup, message);
            QCOMPARE(refused.output, QString());
            QCOMPARE(refused.exitCode, 1);
            QVERIFY2(refused.errors.contains(QLatin1String("denied"), Qt::CaseInsensitive) ||
                         refused.errors.contains(QLatin1String("not authorized")),
                     qPrintable(refused.errors));
        }

        // Also while it has left the bus, and has the one name only.
        const QStringList injection{QStringLiteral("Inject"),    QStringLiteral("ssus"),
                                    QStringLiteral("drop-name"), QStringLiteral("getType"),
                                    QStringLiteral("1"),         QStringLiteral("0")};
        const QStringList faults{simulator, toSimulator.at(1),
                                 simulator + QStringLiteral(".Faults")};
        QCOMPARE(call(stranger, group, faults + injection).exitCode, 0);
        QCOMPARE(call(stranger, group, toService).exitCode, 0);
        QCOMPARE(call(stranger, group, toService).exitCode, 1);
        QCOMPARE(call(stranger, group, toSimulator).output, QStringLiteral("b false\n"));
        QCOMPARE(call(stranger, otherGroup, toSimulator).exitCode, 1);

        // Everybody sees that it is there, and that it goes.
        service.terminate();
        QCOMPARE(waitForEnd(service).exitCode, 0);
    }

    void theBusStartsItWhenItIsCalledAndItKeepsItsState()
    {
        const QTemporaryDir directory;
        const QString configurationFile = prepareActivation(directory.path());
        const auto start = [&] {
            return startBus(QStringLiteral("dbus-daemon"), directory.path(), configurationFile);
        };
        auto bus = start();
        const QString socket = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
        const QString name = Simulator::serviceName();
        const auto call = [&](const QString &connection, const char *method,
                              const QVariantList &arguments) {
            QDBusMessage message = QDBusMessage::createMethodCall(name, QStringLiteral("/"), name,
                                                                  QString::fromLatin1(method));
            message.setArguments(arguments);
            return QDBusConnection::connectToBus(socket, connection).call(message);
        };
        const QString first = QStringLiteral("before");
        QCOMPARE(call(first, "setTabSize", {7}).errorMessage(), QString());
        const auto model =
            call(first, "getModel", {QStringLiteral("masterCollectionKey")}).arguments();
        QCOMPARE(model, QVariantList{QStringLiteral("Kestan")});
        // The service goes with its bus, and a moment later: its state is in use until then.
        const uint process = QDBusConnection(first).interface()->servicePid(name);
        bus.reset();
        QTRY_VERIFY(!QFile::exists(QStringLiteral("/proc/%1/exe").arg(process)));
        QFile::remove(directory.filePath(QStringLiteral("bus")));
        bus = start();
        QCOMPARE(call(QStringLiteral("after"), "getTabSize", {}).arguments(), QVariantList{7});
    }

private:
    QString installed(const char *path) const
    {
        return m_prefix.filePath(QString::fromLatin1(path));
    }

    QString installedProgram() const { return installed("bin/embosser-simulator"); }

    /// With the installed policy, for users and groups that there are.
    QString prepareConfiguration(const QString &directory) const
    {
        const QString name = QStringLiteral("com.tavelornbraille.ConfigurationManager.conf");
        QByteArray policy = read(installed("share/dbus-1/system.d/") + name);
        policy.replace("user=\"embosser-simulator\"", "user=\"" + owner.toLatin1() + '"');
        policy.replace("group=\"embosser\"", "group=\"" + group.toLatin1() + '"');
        QDir(directory).mkdir(QStringLiteral("system.d"));
        write(QStringLiteral("%1/system.d/%2").arg(directory, name), policy);
        const QString file = directory + QStringLiteral("/bus.conf");
        write(file, QString::fromLatin1(configuration).arg(directory).toUtf8());
        return file;
    }

    /// With the installed activation file, for a folder that is not the system's.
    QString prepareActivation(const QString &directory) const
    {
        QByteArray activation = read(installed(activationFile));
        activation.replace(defaultState, directory.toUtf8() + "/state.db");
        QDir(directory).mkdir(QStringLiteral("services"));
        write(directory + QStringLiteral("/services/activation.service"), activation);
        const QString file = directory + QStringLiteral("/bus.conf");
        write(file, QString::fromLatin1(activatingConfiguration).arg(directory).toUtf8());
        return file;
    }

    static std::unique_ptr<ChildProcess> startBus(const QString &daemon, const QString &directory,
                                                  const QString &configurationFile)
    {
        const QString socket = directory + QStringLiteral("/bus");
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + socket.toUtf8());
        auto bus =
            daemon == QLatin1String("dbus-daemon")
                ? std::make_unique<ChildProcess>(
                      daemon,
                      QStringList{QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                                  QStringLiteral("--config-file=") + configurationFile})
                : std::make_unique<ChildProcess>(
                      QStringLiteral("unshare"),
                      QStringList{QStringLiteral("--mount"), QStringLiteral("--pid"),
                                  QStringLiteral("--fork"), QStringLiteral("--kill-child"),
                                  QStringLiteral("python3"), QStringLiteral(DBUS_BROKER_SCRIPT),
                                  socket, configurationFile});
        bus->startAndReadLine();
        return bus;
    }

    /// `message` has destination, path, interface and method.
    static Ended call(const QString &user, const QString &userGroup, const QStringList &message)
    {
        OthersProcess busctl(user, userGroup, QStringLiteral("busctl"),
                             QStringList{QStringLiteral("--address=") +
                                             qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS"),
                                         QStringLiteral("call")} +
                                 message);
        busctl.start();
        return waitForEnd(busctl);
    }

    const QTemporaryDir m_prefix;
};

QTEST_GUILESS_MAIN(TestSystemBus)
#include "tst_systembus.moc"
