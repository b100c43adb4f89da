#include "graph/GraphViewSetting.h"

#include "graph/RectText.h"
#include "util/DecimalText.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QMetaProperty>
#include <QRegularExpression>
#include <QVariant>

#include <cmath>
#include <limits>
#include <optional>

namespace pulsebar {

namespace {

/// No such object needs nearly as much.
constexpr qsizetype kLongestText = 16384;
/// The window system counts a window's points with 15 bits.
constexpr double kLargestSize = 32767.0;
/// More than any screen shows. Both the program and the display server keep every pixel of a
/// window, so that within those 15 bits one entry could still take all of a machine's memory.
constexpr double kLargestArea = 7680.0 * 4320.0;

constexpr double kLargestFloat = std::numeric_limits<float>::max();

float narrowed(double value)
{
    return static_cast<float>(qBound(-kLargestFloat, value, kLargestFloat));
}

/// The text behind a key's colon; empty for a colour that there is not.
QString jsonText(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QColor: {
        const auto color = value.value<QColor>();
        return color.isValid() ? u'"' + color.name(QColor::HexArgb) + u'"' : QString();
    }
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Float: {
        const float number = value.toFloat();
        // Without "-0", which a reader takes for 0.
        return decimalText(std::isfinite(number) && number != 0.0F ? number : 0.0F);
    }
    default:
        return QString::number(value.toInt());
    }
}

std::optional<QVariant> colorFrom(const QJsonValue &value)
{
    static const QRegularExpression form(QStringLiteral("\\A#([0-9A-Fa-f]{8})\\z"));
    const QRegularExpressionMatch match = form.match(value.toString());
    if (!match.hasMatch())
        return std::nullopt;
    return QVariant(QColor::fromRgba(match.capturedView(1).toUInt(nullptr, 16)));
}

std::optional<QVariant> floatFrom(const QJsonValue &value)
{
    const double number = value.toDouble();
    if (!value.isDouble() || !std::isfinite(number) || std::fabs(number) > kLargestFloat)
        return std::nullopt;
    return QVariant(static_cast<float>(number));
}

/// A truth value is a number, too, in settings written by hand.
std::optional<QVariant> integerFrom(const QJsonValue &value)
{
    if (value.isBool())
        return QVariant(value.toBool() ? 1 : 0);
    const double number = value.toDouble();
    if (!value.isDouble() || number != std::trunc(number) ||
        number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max())
        return std::nullopt;
    return QVariant(static_cast<int>(number));
}

std::optional<QVariant> booleanFrom(const QJsonValue &value)
{
    const std::optional<QVariant> number = integerFrom(value);
    return number ? std::optional<QVariant>(number->toInt() != 0) : std::nullopt;
}

/// @return absent for a value that a field of the type cannot have
std::optional<QVariant> valueFrom(const QJsonValue &value, QMetaType type)
{
    if (value.isUndefined() || value.isNull())
        return QVariant(type);
    switch (type.id()) {
    case QMetaType::QColor:
        return colorFrom(value);
    case QMetaType::Float:
        return floatFrom(value);
    case QMetaType::Bool:
        return booleanFrom(value);
    default:
        return integerFrom(value);
    }
}

bool isPossibleSize(QSizeF size)
{
    const auto isPossible = [](double side) { return side >= 0.0 && side <= kLargestSize; };
    return isPossible(size.width()) && isPossible(size.height()) &&
           size.width() * size.height() <= kLargestArea;
}

/// Absent when the text is no object.
std::optional<QJsonObject> objectFrom(const QString &text)
{
    if (text.size() > kLongestText)
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    return document.isObject() ? std::optional<QJsonObject>(document.object()) : std::nullopt;
}

} // namespace

GraphViewSetting::GraphViewSetting(QObject *parent)
    : QObject(parent)
{
}

QStringList GraphViewSetting::archiveKeys()
{
    return {QStringLiteral("lineColor"),         QStringLiteral("backgroundColor"),
            QStringLiteral("characterColor"),    QStringLiteral("positionX"),
            QStringLiteral("positionY"),         QStringLiteral("sizeHeight"),
            QStringLiteral("sizeWidth"),         QStringLiteral("alphaAtPoint"),
            QStringLiteral("alphaWithoutPoint"), QStringLiteral("useThreshold"),
            QStringLiteral("threshold"),         QStringLiteral("thresholdType"),
            QStringLiteral("screenNumber")};
}

QString GraphViewSetting::encode() const
{
    QStringList fields;
    const QStringList keys = archiveKeys();
    for (const QString &key : keys) {
        const QString text = jsonText(property(key.toLatin1().constData()));
        if (!text.isEmpty())
            fields += u'"' + key + QLatin1String("\":") + text;
    }
    return u'{' + fields.join(u',') + u'}';
}

std::unique_ptr<GraphViewSetting> GraphViewSetting::decode(const QString &text)
{
    const std::optional<QJsonObject> object = objectFrom(text);
    if (!object)
        return nullptr;
    auto setting = std::make_unique<GraphViewSetting>();
    const QStringList keys = archiveKeys();
    for (const QString &key : keys) {
        const QByteArray name = key.toLatin1();
        const QMetaType type =
            staticMetaObject.property(staticMetaObject.indexOfProperty(name)).metaType();
        const std::optional<QVariant> value = valueFrom(object->value(key), type);
        if (!value)
            return nullptr;
        setting->setProperty(name.constData(), *value);
    }
    if (!isPossibleSize(setting->windowRect().size()))
        return nullptr;
    setting->m_characterColor = Qt::white;
    setting->m_alphaAtPoint = 1.0F;
    setting->m_alphaWithoutPoint = 0.55F;
    return setting;
}

QRectF GraphViewSetting::windowRect() const
{
    return {static_cast<double>(m_positionX), static_cast<double>(m_positionY),
            static_cast<double>(m_sizeWidth), static_cast<double>(m_sizeHeight)};
}

void GraphViewSetting::setWindowRect(const QRectF &rect)
{
    m_positionX = narrowed(rect.x());
    m_positionY = narrowed(rect.y());
    m_sizeWidth = narrowed(rect.width());
    m_sizeHeight = narrowed(rect.height());
}

QRectF GraphViewSetting::windowRectForScreen(const QRectF &screenFrame) const
{
    return rectFromText(m_windowRectDict.value(textFromRect(screenFrame))).value_or(QRectF());
}

void GraphViewSetting::setWindowRectForScreen(const QRectF &rect, const QRectF &screenFrame)
{
    m_windowRectDict.insert(textFromRect(screenFrame), textFromRect(rect));
}

} // namespace pulsebar
