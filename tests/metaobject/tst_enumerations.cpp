// SPDX-License-Identifier: MIT

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QFile>
#include <QtCore/QMetaEnum>
#include <QtTest/QTest>

#include <type_traits>

using Keys = QVector<QPair<QByteArray, int>>;

struct Enumeration
{
    QByteArray name;
    Keys keys;
};

namespace {

QVector<Enumeration> lockedEnumerations()
{
    QFile file(QFINDTESTDATA("enumerations.lock"));
    if (!file.open(QFile::ReadOnly))
        qFatal("enumerations.lock: %s", qPrintable(file.errorString()));
    QVector<Enumeration> enumerations;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith('['))
            enumerations.append(Enumeration{line.mid(1, line.size() - 2), {}});
        const int equals = line.indexOf(" = ");
        if (equals > 0)
            enumerations.last().keys.append({line.left(equals), line.mid(equals + 3).toInt()});
    }
    return enumerations;
}

template<typename... Enumerations>
QVector<QMetaEnum> metaEnumsOf()
{
    static_assert((std::is_same_v<std::underlying_type_t<Enumerations>, int> && ...));
    static_assert((!std::is_convertible_v<Enumerations, int> && ...), "scoped");
    return {QMetaEnum::fromType<Enumerations>()...};
}

} // namespace

class TestEnumerations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thereAreElevenInTheirOrder()
    {
        QCOMPARE(m_locked.size(), 11);
        QCOMPARE(m_holder.enumeratorCount(), m_locked.size());
        for (int i = 0; i < m_locked.size(); ++i)
            QCOMPARE(QByteArray(m_holder.enumerator(i).name()), m_locked.at(i).name);
    }

    void eachHasItsKeysInTheirOrder_data()
    {
        QTest::addColumn<Keys>("keys");
        int count = 0;
        for (const Enumeration &enumeration : m_locked) {
            QTest::newRow(enumeration.name) << enumeration.keys;
            count += enumeration.keys.size();
        }
        QCOMPARE(count, 163);
    }

    void eachHasItsKeysInTheirOrder()
    {
        QFETCH(const Keys, keys);
        const QMetaEnum enumeration = enumerator(QTest::currentDataTag());
        Keys actual;
        for (int i = 0; i < enumeration.keyCount(); ++i)
            actual.append({enumeration.key(i), enumeration.value(i)});
        QCOMPARE(actual, keys);
        QVERIFY(enumeration.isScoped());
        QVERIFY(!enumeration.isFlag());
        for (const auto &[key, value] : keys) {
            QCOMPARE(QByteArray(enumeration.valueToKey(value)), key);
            QCOMPARE(enumeration.keyToValue(key), value);
        }
    }

    void eachHasAShortNameInTheNamespace()
    {
        const QVector<QMetaEnum> enumerations =
            metaEnumsOf<lcm::BrailleDimension, lcm::BrailleType, lcm::Duplex, lcm::EmbosserType,
                        lcm::ModelMask, lcm::HeadType, lcm::FeedType, lcm::Orientation,
                        lcm::PrintSpeed, lcm::ValidateCommand, lcm::RowValueList>();
        QCOMPARE(enumerations.size(), m_locked.size());
        for (int i = 0; i < m_locked.size(); ++i) {
            QCOMPARE(enumerations.at(i).enclosingMetaObject(), &m_holder);
            QCOMPARE(QByteArray(enumerations.at(i).name()), m_locked.at(i).name);
        }
    }

    void aNumberWithoutAKeyHasNone_data()
    {
        QTest::addColumn<QByteArray>("enumeration");
        QTest::addColumn<int>("number");
        QTest::newRow("bit 3 of the models") << QByteArray("ModelMask") << 8;
        QTest::newRow("two models") << QByteArray("ModelMask") << 3;
        QTest::newRow("no duplex mode") << QByteArray("Duplex") << 0;
        QTest::newRow("no dots") << QByteArray("BrailleType") << 0;
        QTest::newRow("one dot") << QByteArray("BrailleType") << 1;
        QTest::newRow("seven dots") << QByteArray("BrailleType") << 7;
        QTest::newRow("after the last value list") << QByteArray("RowValueList") << 58;
    }

    void aNumberWithoutAKeyHasNone()
    {
        QFETCH(const QByteArray, enumeration);
        QFETCH(const int, number);
        QCOMPARE(enumerator(enumeration).valueToKey(number), nullptr);
    }

    void sharedKeysStandForDifferentNumbers()
    {
        QCOMPARE(static_cast<int>(lcm::HeadType::Single), 4);
        QCOMPARE(static_cast<int>(lcm::Duplex::Single), 1);
        QCOMPARE(QMetaEnum::fromType<lcm::Orientation>().valueToKey(0), "Portrait");
        QCOMPARE(QMetaEnum::fromType<lcm::ModelMask>().valueToKey(255), "All");
    }

    void theirHolderHasNothingElse()
    {
        QCOMPARE(m_holder.className(), "lcm::EnumDetail");
        QCOMPARE(m_holder.superClass(), &QObject::staticMetaObject);
        QCOMPARE(m_holder.methodCount(), m_holder.methodOffset());
        QCOMPARE(m_holder.propertyCount(), m_holder.propertyOffset());
        QCOMPARE(m_holder.classInfoCount(), 0);
        QCOMPARE(m_holder.constructorCount(), 0);
    }

    void theirHolderIsAPlainObject()
    {
        lcm::EnumDetail holder;
        QCOMPARE(holder.metaObject(), &m_holder);
        QCOMPARE(holder.qt_metacast("lcm::EnumDetail"), static_cast<void *>(&holder));
        QCOMPARE(holder.qt_metacast("QObject"), static_cast<void *>(&holder));
        QCOMPARE(holder.qt_metacast("EnumDetail"), nullptr);
    }

private:
    QMetaEnum enumerator(const char *name) const
    {
        return m_holder.enumerator(m_holder.indexOfEnumerator(name));
    }

    const QVector<Enumeration> m_locked = lockedEnumerations();
    const QMetaObject &m_holder = lcm::EnumDetail::staticMetaObject;
};

QTEST_APPLESS_MAIN(TestEnumerations)
#include "tst_enumerations.moc"
