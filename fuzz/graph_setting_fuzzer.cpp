#include "graph/GraphViewSetting.h"
#include "graph/RectText.h"

#include <QByteArray>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace pulsebar;

/// What was read is usable, and is the same after being written and read again.
void checkSetting(const QString &text)
{
    const auto setting = GraphViewSetting::decode(text);
    if (!setting)
        return;
    const QRectF rect = setting->windowRect();
    if (!std::isfinite(rect.x()) || !std::isfinite(rect.y()) || !(rect.width() >= 0.0) ||
        !(rect.height() >= 0.0) || rect.width() > 32767.0 || rect.height() > 32767.0 ||
        !std::isfinite(setting->threshold()))
        std::abort();
    const QString written = setting->encode();
    const auto again = GraphViewSetting::decode(written);
    if (!again || again->encode() != written)
        std::abort();
}

void checkRect(const QString &text)
{
    const std::optional<QRectF> rect = rectFromText(text);
    if (rect && rectFromText(textFromRect(*rect)) != rect)
        std::abort();
}

} // namespace

/// The settings file's entry of a graph window, and the place of its panel.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    checkSetting(text);
    checkRect(text);
    return 0;
}
