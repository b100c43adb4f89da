#include "e2e/MenuClient.h"

#include <QDBusArgument>
#include <QDBusVariant>

#include <stdexcept>

namespace pulsebar::e2e {

namespace {

MenuRow rowFrom(const QDBusArgument &from)
{
    MenuRow row;
    from.beginStructure();
    from >> row.id >> row.properties;
    from.beginArray();
    while (!from.atEnd()) {
        QDBusVariant child;
        from >> child;
        row.children += rowFrom(qvariant_cast<QDBusArgument>(child.variant()));
    }
    from.endArray();
    from.endStructure();
    return row;
}

} // namespace

QString MenuRow::label() const
{
    const QString marked = properties.value(QStringLiteral("label")).toString();
    QString plain;
    for (qsizetype i = 0; i < marked.size(); ++i) {
        // One stands before the letter that is a mnemonic, two for the character itself.
        if (marked[i] == u'_' && ++i == marked.size())
            break;
        plain += marked[i];
    }
    return plain;
}

bool MenuRow::isSeparator() const
{
    return properties.value(QStringLiteral("type")).toString() == u"separator";
}

bool MenuRow::isEnabled() const
{
    return properties.value(QStringLiteral("enabled"), true).toBool();
}

bool MenuRow::isOn() const
{
    return properties.value(QStringLiteral("toggle-state"), 0).toInt() == 1;
}

QStringList MenuRow::labels() const
{
    QStringList titles;
    for (const MenuRow &row : children)
        titles += row.isSeparator() ? QStringLiteral("-") : row.label();
    return titles;
}

QStringList MenuRow::labelsThatAreOn() const
{
    QStringList titles;
    for (const MenuRow &row : children) {
        if (row.isOn())
            titles += row.label();
    }
    return titles;
}

const MenuRow *MenuRow::child(const QString &label) const
{
    for (const MenuRow &row : children) {
        if (!row.isSeparator() && row.label() == label)
            return &row;
    }
    return nullptr;
}

const MenuRow *MenuRow::at(const QStringList &path) const
{
    const MenuRow *row = this;
    for (const QString &label : path) {
        row = row->child(label);
        if (row == nullptr)
            return nullptr;
    }
    return row;
}

MenuClient::MenuClient(Desktop &desktop, qint64 programPid)
    : m_desktop(desktop)
    , m_service(QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(programPid))
{
}

QDBusMessage MenuClient::call(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        m_service, QStringLiteral("/MenuBar"), QStringLiteral("com.canonical.dbusmenu"), method);
    message.setArguments(arguments);
    return m_desktop.bus().call(message);
}

QString MenuClient::event(int id, const QString &name)
{
    return call(QStringLiteral("Event"),
                {id, name, QVariant::fromValue(QDBusVariant(0)), QVariant(0U)})
        .errorName();
}

MenuRow MenuClient::layout()
{
    call(QStringLiteral("AboutToShow"), {0});
    const QDBusMessage reply = call(QStringLiteral("GetLayout"), {0, -1, QStringList()});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 2)
        return {};
    return rowFrom(qvariant_cast<QDBusArgument>(reply.arguments().at(1)));
}

const MenuRow &MenuClient::open()
{
    const bool filled = waitFor([this] {
        m_root = layout();
        return !m_root.children.isEmpty();
    });
    if (!filled)
        throw std::runtime_error("the program's menu stays empty");
    event(0, QStringLiteral("opened"));
    return m_root;
}

void MenuClient::close()
{
    event(0, QStringLiteral("closed"));
}

QString MenuClient::click(int id)
{
    return event(id, QStringLiteral("clicked"));
}

bool MenuClient::choose(const QStringList &path)
{
    const MenuRow *row = open().at(path);
    const bool taken = row != nullptr && row->isEnabled() && click(row->id).isEmpty();
    close();
    return taken;
}

MenuRow MenuClient::look(const QStringList &path)
{
    const MenuRow *row = open().at(path);
    close();
    return row != nullptr ? *row : MenuRow();
}

} // namespace pulsebar::e2e
