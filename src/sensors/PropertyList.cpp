#include "sensors/PropertyList.h"

#include "sensors/BinaryPropertyList.h"

#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <plist/plist.h>

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <memory>

namespace pulsebar {

namespace {

/// The library takes lists apart by recursion. This many tags cannot nest too deep for it, and are
/// those of a thousand sensors.
constexpr qsizetype MostTags = 12000;
constexpr int DeepestNesting = 16;
/// It takes an entity out of a text by moving all that follows.
constexpr qsizetype MostEntities = 12000;

struct PlistDeleter
{
    void operator()(void *node) const { plist_free(node); }
};
using Plist = std::unique_ptr<void, PlistDeleter>;

using Keys = std::initializer_list<const char *>;

std::optional<QVariant> valueOf(plist_t node, const Keys &keys, int depth);

std::optional<QVariant> arrayOf(plist_t node, const Keys &keys, int depth)
{
    QVariantList list;
    const std::uint32_t size = plist_array_get_size(node);
    for (std::uint32_t i = 0; i < size; ++i) {
        const auto element = valueOf(plist_array_get_item(node, i), keys, depth + 1);
        if (!element)
            return std::nullopt;
        list.append(*element);
    }
    return list;
}

/// Only what is asked for: the library ends the program over a key with a zero in it, when it is to
/// hand it out.
std::optional<QVariant> dictionaryOf(plist_t node, const Keys &keys, int depth)
{
    QVariantMap map;
    for (const char *key : keys) {
        const plist_t item = plist_dict_get_item(node, key);
        if (!item)
            continue;
        const auto element = valueOf(item, keys, depth + 1);
        if (!element)
            return std::nullopt;
        map.insert(QString::fromUtf8(key), *element);
    }
    return map;
}

QString textOf(plist_t node)
{
    std::uint64_t length = 0;
    const char *text = plist_get_string_ptr(node, &length);
    return QString::fromUtf8(text, static_cast<qsizetype>(length));
}

/// Absent when it nests too deep.
std::optional<QVariant> valueOf(plist_t node, const Keys &keys, int depth)
{
    if (depth > DeepestNesting)
        return std::nullopt;
    switch (plist_get_node_type(node)) {
    case PLIST_ARRAY:
        return arrayOf(node, keys, depth);
    case PLIST_DICT:
        return dictionaryOf(node, keys, depth);
    case PLIST_STRING:
        return textOf(node);
    default:
        return QVariant();
    }
}

bool isTame(const QByteArray &bytes)
{
    if (isBinaryPropertyList(bytes))
        return isTameBinaryPropertyList(bytes, DeepestNesting, MostTags);
    return bytes.count('<') <= MostTags && bytes.count('&') <= MostEntities;
}

/// Not by the function that finds out the form itself: newer libraries know further ones, whose
/// nesting nobody looked at, and it takes other arguments there.
Plist parsed(const QByteArray &bytes)
{
    plist_t root = nullptr;
    const auto size = static_cast<std::uint32_t>(bytes.size());
    if (isBinaryPropertyList(bytes))
        plist_from_bin(bytes.constData(), size, &root);
    else
        plist_from_xml(bytes.constData(), size, &root);
    return Plist(root);
}

} // namespace

std::optional<QVariant> parsePropertyList(const QByteArray &bytes,
                                          std::initializer_list<const char *> keys)
{
    if (bytes.isEmpty() || bytes.size() > std::numeric_limits<std::int32_t>::max() ||
        !isTame(bytes))
        return std::nullopt;
    const Plist list = parsed(bytes);
    return list ? valueOf(list.get(), keys, 0) : std::nullopt;
}

} // namespace pulsebar
