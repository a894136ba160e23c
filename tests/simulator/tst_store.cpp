// SPDX-License-Identifier: MIT

#include "state/Store.h"

#include <QtTest/QTest>

using simulator::Store;
using simulator::StoreError;

class TestStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store = std::make_unique<Store>(QString()); }
    void cleanup() { m_store.reset(); }

    void aValueIsKeptInItsScope()
    {
        m_store->setValue(m_one, m_name, 1);
        m_store->setValue(m_two, m_name, QStringLiteral("text"));
        QCOMPARE(m_store->value(m_one, m_name), QVariant(1));
        QCOMPARE(m_store->value(m_two, m_name), QVariant(QStringLiteral("text")));
        QVERIFY(!m_store->value(m_one, QStringLiteral("other")).isValid());
        m_store->setValue(m_one, m_name, 2.5);
        QCOMPARE(m_store->values(m_one), (QMap<QString, QVariant>{{m_name, 2.5}}));
        m_store->removeValue(m_one, m_name);
        QVERIFY(!m_store->value(m_one, m_name).isValid());
        QVERIFY(m_store->value(m_two, m_name).isValid());
    }

    void anEmptyTextIsAValue()
    {
        m_store->setValue(m_one, m_name, QStringLiteral(""));
        QVERIFY(m_store->value(m_one, m_name).isValid());
        QCOMPARE(m_store->value(m_one, m_name).toString(), QString());
    }

    void aScopeIsCopiedAndRemovedWhole()
    {
        m_store->setValue(m_one, m_name, 1);
        m_store->setValue(m_one, QStringLiteral("other"), 2);
        m_store->setValue(m_two, m_name, 3);
        m_store->setValue(m_two, QStringLiteral("own"), 4);
        m_store->copyScope(m_one, m_two);
        QCOMPARE(m_store->values(m_two),
                 (QMap<QString, QVariant>{
                     {m_name, 1}, {QStringLiteral("other"), 2}, {QStringLiteral("own"), 4}}));
        m_store->removeScope(m_one);
        QVERIFY(m_store->values(m_one).isEmpty());
        QCOMPARE(m_store->values(m_two).size(), 3);
    }

    void aTransactionThatIsNotCommittedChangesNothing()
    {
        m_store->setValue(m_one, m_name, 1);
        {
            const Store::Transaction transaction(*m_store);
            m_store->setValue(m_one, m_name, 2);
        }
        QCOMPARE(m_store->value(m_one, m_name), QVariant(1));
        m_store->setValue(m_one, m_name, 3);
        QCOMPARE(m_store->value(m_one, m_name), QVariant(3));
    }

    void anInnerTransactionIsPartOfTheOuterOne()
    {
        {
            const Store::Transaction outer(*m_store);
            Store::Transaction inner(*m_store);
            m_store->setValue(m_one, m_name, 1);
            inner.commit();
        }
        QVERIFY(!m_store->value(m_one, m_name).isValid());
        Store::Transaction outer(*m_store);
        {
            Store::Transaction inner(*m_store);
            m_store->setValue(m_one, m_name, 2);
            inner.commit();
        }
        outer.commit();
        QCOMPARE(m_store->value(m_one, m_name), QVariant(2));
    }

    void theStateIsOfOneModel()
    {
        m_store->bindTo(QStringLiteral("Arvo"));
        m_store->bindTo(QStringLiteral("Arvo"));
        QVERIFY_EXCEPTION_THROWN(m_store->bindTo(QStringLiteral("Kestan")), StoreError);
    }

private:
    const QString m_one = QStringLiteral("one");
    const QString m_two = QStringLiteral("two");
    const QString m_name = QStringLiteral("name");
    std::unique_ptr<Store> m_store;
};

QTEST_GUILESS_MAIN(TestStore)
#include "tst_store.moc"
