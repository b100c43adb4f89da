#include "controller/Scripting.h"

#include "controller/AlertListText.h"
#include "controller/BusValues.h"
#include "controller/Controller.h"
#include "controller/CulpritScripting.h"
#include "controller/DBusInterfaces.h"
#include "controller/GraphScripting.h"
#include "controller/TitleTexts.h"
#include "engine/NetworkMonitor.h"
#include "engine/TopMonitor.h"

#include <QDBusMetaType>
#include <QMetaObject>

namespace pulsebar {

namespace {

QString service(QLatin1String text)
{
    return QString(text);
}

BusError invalidArgs(const QString &text)
{
    return {QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"), text};
}

BusError noValue(const QString &what)
{
    return {QStringLiteral("org.pulsebar.Error.NoValue"),
            QStringLiteral("%1 has no value now").arg(what)};
}

BusError undefinedKey()
{
    return {QStringLiteral("org.pulsebar.Error.UndefinedKey"),
            QStringLiteral("titleTypeToDisplay is not defined; see titleTypesToDisplay")};
}

/// Refuses what is not a whole number from 1 to `most`.
template <typename Store>
std::optional<BusError> storeInRange(const QVariant &value, int most, Store store)
{
    const std::optional<int> number = busvalues::toInteger(value);
    if (!number || *number < 1 || *number > most)
        return invalidArgs(
            QStringLiteral("The value must be a whole number from 1 to %1").arg(most));
    store(*number);
    return std::nullopt;
}

std::optional<BusError> checkTitleTypes(const std::optional<QList<int>> &types)
{
    if (!types || types->isEmpty())
        return invalidArgs(QStringLiteral("The value must be a list of at least one title type"));
    for (const int type : *types) {
        if (type < titles::kFirstType || type > titles::kLastType)
            return invalidArgs(QStringLiteral("Title types are the numbers 1 to 11"));
    }
    return std::nullopt;
}

std::optional<BusError> setTitleTypeToDisplay(const QVariant &value)
{
    const std::optional<int> number = busvalues::toInteger(value);
    if (!number)
        return invalidArgs(QStringLiteral("The value must be a whole number"));
    return titleTypeOfScript(*number) ? std::optional<BusError>(undefinedKey()) : std::nullopt;
}

/// The body of an introspection document: its interface elements.
QString interfaceElements(QLatin1String xml)
{
    const QString text(xml);
    static const QString kEnd = QStringLiteral("</interface>");
    const qsizetype from = text.indexOf(QLatin1String("<interface"));
    const qsizetype to = text.lastIndexOf(kEnd) + kEnd.size();
    return text.mid(from, to - from) + u'\n';
}

} // namespace

std::optional<int> titleTypeOfScript(int number)
{
    static constexpr int kTy0 = ('k' << 24) | ('T' << 16) | ('y' << 8) | '0';
    static constexpr int kT10 = ('k' << 24) | ('T' << 16) | ('1' << 8) | '0';
    if (number >= titles::kFirstType && number <= titles::kLastType)
        return number;
    if (number >= kTy0 + 1 && number <= kTy0 + 9)
        return number - kTy0;
    if (number == kT10 || number == kT10 + 1)
        return number - kT10 + 10;
    return std::nullopt;
}

Scripting::Scripting(Controller &controller)
    : m_controller(controller)
    , m_object(service(kPath), interfaceElements(dbusinterfaces::kScripting1) +
                                   interfaceElements(dbusinterfaces::kControl1))
{
    qDBusRegisterMetaType<QList<QVariantMap>>();
    addSettings();
    addMeasuredValues();
    addControlProperties();
    addControlMethods();
    addGraphWindows();
    connectSignals();
}

void Scripting::addSettings()
{
    static constexpr int kMostListed = 20;
    static constexpr int kLongestInterval = 60;
    TopMonitor &monitor = m_controller.monitor();
    m_object.addProperty({kScripting, QStringLiteral("titleTypeToDisplay"),
                          []() -> BusResult { return undefinedKey(); }, setTitleTypeToDisplay});
    m_object.addProperty({kScripting, QStringLiteral("listMax"),
                          [&monitor]() -> BusResult { return QVariant(monitor.listMax()); },
                          [&monitor](const QVariant &value) {
                              return storeInRange(value, kMostListed, [&monitor](int number) {
                                  monitor.setListMax(number);
                              });
                          }});
    m_object.addProperty({kScripting, QStringLiteral("refreshSec"),
                          [&monitor]() -> BusResult { return QVariant(monitor.refreshSec()); },
                          [&monitor](const QVariant &value) {
                              return storeInRange(value, kLongestInterval, [&monitor](int number) {
                                  monitor.setRefreshSec(number);
                              });
                          }});
}

void Scripting::addMeasuredValues()
{
    TopMonitor &monitor = m_controller.monitor();
    /// `read` answers the monitor's value, `convert` its wire form; nothing and an empty collection
    /// of nothing are no value.
    const auto add = [this](const QString &name, auto read, auto convert) {
        m_object.addProperty({kScripting,
                              name,
                              [name, read, convert]() -> BusResult {
                                  const QVariant value = read();
                                  if (!value.isValid())
                                      return noValue(name);
                                  return QVariant::fromValue(convert(value));
                              },
                              {}});
    };
    const auto real = [](const QVariant &value) { return value.toDouble(); };
    const auto unsignedNumber = [](const QVariant &value) { return value.toULongLong(); };
    const auto dictionary = [](const QVariant &value) {
        return busvalues::fromDictionary(value.toMap());
    };
    add(
        QStringLiteral("informationDictionary"),
        [&monitor] {
            return monitor.topDict().isEmpty() ? QVariant() : QVariant(monitor.topDict());
        },
        dictionary);
    add(
        QStringLiteral("CPUTotalUsage"), [&monitor] { return monitor.CPUTotalUsage(); }, real);
    add(
        QStringLiteral("networkIn"), [&monitor] { return monitor.networkIn(); }, unsignedNumber);
    add(
        QStringLiteral("networkOut"), [&monitor] { return monitor.networkOut(); }, unsignedNumber);
    add(
        QStringLiteral("processes"), [&monitor] { return monitor.processes(); },
        [](const QVariant &value) { return busvalues::fromDictionaries(value.toList()); });
    add(
        QStringLiteral("batteryRemain"), [&monitor] { return monitor.batteryRemain(); }, real);
    add(
        QStringLiteral("temperatures"),
        [&monitor] {
            const QVariant temperatures = monitor.CPUTemparatures();
            return temperatures.toMap().isEmpty() ? QVariant() : temperatures;
        },
        dictionary);
    add(
        QStringLiteral("fanMoves"),
        [&monitor] {
            const QVariant speeds = monitor.fanMoves();
            return speeds.toList().isEmpty() ? QVariant() : speeds;
        },
        [](const QVariant &value) { return busvalues::fromNumbers(value.toList()); });
}

void Scripting::addControlProperties()
{
    Controller &controller = m_controller;
    m_object.addProperty({kControl,
                          QStringLiteral("title"),
                          [&controller]() -> BusResult {
                              return busvalues::fromValue(controller.statusItem().title());
                          },
                          {}});
    m_object.addProperty({kControl, QStringLiteral("titleTypesToDisplay"),
                          [&controller]() -> BusResult {
                              return QVariant::fromValue(controller.titles().titleTypesToDisplay());
                          },
                          [&controller](const QVariant &value) {
                              const std::optional<QList<int>> types = busvalues::toIntegers(value);
                              std::optional<BusError> error = checkTitleTypes(types);
                              if (!error)
                                  controller.chooseTitleTypes(*types);
                              return error;
                          }});
    m_object.addProperty(
        {kControl, QStringLiteral("titleOnPanel"),
         [&controller]() -> BusResult { return QVariant(controller.titleOnPanel()); },
         [&controller](const QVariant &value) -> std::optional<BusError> {
             if (value.typeId() == QMetaType::QString &&
                 controller.setTitleOnPanel(value.toString()))
                 return std::nullopt;
             return invalidArgs(QStringLiteral("The value must be automatic, text, icon or strip"));
         }});
    m_object.addProperty({kControl,
                          QStringLiteral("itemWidth"),
                          [&controller]() -> BusResult {
                              return QVariant(static_cast<double>(controller.titles().itemWidth()));
                          },
                          {}});
    m_object.addProperty(
        {kControl, QStringLiteral("observeArray"),
         [&controller]() -> BusResult {
             return QVariant::fromValue(busvalues::toSenders(controller.alerts().observeArray()));
         },
         [&controller](const QVariant &value) -> std::optional<BusError> {
             const std::optional<QVariantList> entries = busvalues::toDictionaries(value);
             if (!entries)
                 return invalidArgs(QStringLiteral("The value must be an array of dictionaries"));
             if (!controller.alerts().setObserveArray(*entries))
                 return BusError{
                     QStringLiteral("org.freedesktop.DBus.Error.LimitsExceeded"),
                     QStringLiteral("There can be %1 entries at most").arg(alertlist::kMostAlerts)};
             return std::nullopt;
         }});
}

void Scripting::addControlMethods()
{
    Controller &controller = m_controller;
    m_object.addMethod({kControl, QStringLiteral("cacheDataForKey"), QStringLiteral("s"),
                        [&controller](const QVariantList &arguments) -> BusResult {
                            const QString key = arguments.at(0).toString();
                            const std::optional<UsageCache> cache =
                                controller.monitor().cacheDataForKey(key);
                            if (!cache)
                                return noValue(key);
                            return QVariant::fromValue(busvalues::fromNumbers(*cache));
                        }});
    m_object.addMethod({kControl, QStringLiteral("netInformationDictionary"), QString(),
                        [&controller](const QVariantList &) -> BusResult {
                            const NetworkMonitor *monitor = controller.networkMonitor();
                            const auto newest = monitor ? monitor->topDict() : std::nullopt;
                            if (!newest)
                                return noValue(QStringLiteral("netInformationDictionary"));
                            return QVariant(busvalues::fromDictionary(*newest));
                        }});
    m_object.addMethod(culpritsMethod(kControl, controller.culprits()));
    // Both are answered first: the one may wait for the user, the other ends the bus connection.
    m_object.addMethod({kControl, QStringLiteral("openMenu"), QString(),
                        [&controller](const QVariantList &) -> BusResult {
                            QMetaObject::invokeMethod(&controller, &Controller::openMenu,
                                                      Qt::QueuedConnection);
                            return QVariant();
                        }});
    m_object.addMethod({kControl, QStringLiteral("quit"), QString(),
                        [&controller](const QVariantList &) -> BusResult {
                            QMetaObject::invokeMethod(&controller, &Controller::quit,
                                                      Qt::QueuedConnection);
                            return QVariant();
                        }});
}

void Scripting::addGraphWindows()
{
    m_object.addProperty(graphWindowKeysProperty(kControl, m_controller.graphWindows()));
    for (BusMethod &method : graphWindowMethods(kControl, m_controller.graphWindows()))
        m_object.addMethod(std::move(method));
}

void Scripting::connectSignals()
{
    connect(&m_controller, &Controller::sampleShown, this,
            [this] { m_object.emitSignal(kControl, QStringLiteral("topDictChanged")); });
    connect(&m_controller.monitor(), &TopMonitor::hardwareEvent, this,
            [this](const QVariantMap &entry) {
                m_object.emitSignal(kControl, QStringLiteral("hardwareEvent"),
                                    {busvalues::toSender(entry)});
            });
    connect(&m_controller.statusItem(), &StatusItem::titleChanged, this,
            [this] { m_object.emitPropertyChanged(kControl, QStringLiteral("title")); });
    connect(&m_controller, &Controller::itemWidthChanged, this,
            [this] { m_object.emitPropertyChanged(kControl, QStringLiteral("itemWidth")); });
}

} // namespace pulsebar
