#pragma once

#include <QList>
#include <QMetaObject>
#include <QObject>

// Keeps signal connections and drops them all when cleared or destroyed, so an object that
// wires itself to longer-lived objects leaves nothing dangling behind.
class ConnectionHelper
{
public:
    ConnectionHelper() = default;
    ~ConnectionHelper() { clear(); }
    ConnectionHelper(const ConnectionHelper &) = delete;
    ConnectionHelper &operator=(const ConnectionHelper &) = delete;

    ConnectionHelper &operator<<(const QMetaObject::Connection &connection)
    {
        add(connection);
        return *this;
    }
    void add(const QMetaObject::Connection &connection)
    {
        if (connection)
            m_connections.append(connection);
    }
    void clear()
    {
        for (const auto &c : std::as_const(m_connections))
            QObject::disconnect(c);
        m_connections.clear();
    }
    int count() const { return m_connections.size(); }

private:
    QList<QMetaObject::Connection> m_connections;
};
