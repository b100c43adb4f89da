#pragma once

#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace pulsebar {

/// A preference: its key in the settings file and the value it has when the file holds none.
template <typename T> struct Preference
{
    const char *key;
    T fallback;
};

/// A preference without a default: whoever reads it decides what its absence means.
template <typename T> struct OptionalPreference
{
    const char *key;
};

/// Every key of the settings file that the program reads or writes.
namespace preferences {
inline constexpr Preference<int> kListMax{"listMax", 10};
inline constexpr Preference<int> kRefreshSec{"refreshSec", 3};
inline constexpr Preference<qint64> kNetworkMax{"networkMax", 5};
inline constexpr Preference<bool> kShowIcon{"showIcon", false};
inline constexpr Preference<bool> kCheckMemory{"checkMemory", false};
inline constexpr Preference<bool> kSortByMemory{"sortByMemory", false};
inline constexpr Preference<bool> kFahrenheit{"fahrenheit", false};
/// Written when it is chosen, not with the others at the end.
inline constexpr Preference<bool> kAutoLaunch{"autoLaunch", false};
/// True once the manual has been shown.
inline constexpr Preference<bool> kNotFirstLaunch{"NotFirstLaunch", false};
/// "automatic", "text", "icon" or "strip".
inline constexpr OptionalPreference<QString> kTitleOnPanel{"titleOnPanel"};
inline constexpr OptionalPreference<QVector<int>> kTitleTypesToDisplay{"titleTypesToDisplay"};
/// The single title type of earlier versions; taken over into the list, then removed.
inline constexpr OptionalPreference<int> kTitleTypeToDisplay{"titleTypeToDisplay"};
inline constexpr OptionalPreference<QVector<bool>> kToggleTitleOptionArray{
    "toggleTitleOptionArray"};
inline constexpr OptionalPreference<float> kItemWidth{"itemWidth"};
/// Where the strip was left: x and y of its lower left corner, y counting upward.
inline constexpr OptionalPreference<QVector<int>> kStripPlace{"stripPlace"};
/// The keys of the open graph windows, in the order in which they were opened.
inline constexpr OptionalPreference<QStringList> kGraphWindowKeys{"graphWindowKeys"};
/// The text of a JSON array: the alerts. Written when they change.
inline constexpr OptionalPreference<QString> kObserveArray{"observeArray"};
} // namespace preferences

/// The user's settings, typed. A value that is not of its preference's type counts as absent and
/// is reported once; numbers are plain decimal, without a check of their range.
class Settings
{
public:
    /// While one lives, synchronize() waits; what it was asked for is done at the end of the last.
    class Batch
    {
    public:
        explicit Batch(Settings &settings);
        ~Batch();
        Batch(const Batch &) = delete;
        Batch &operator=(const Batch &) = delete;

    private:
        Settings &m_settings;
    };

    /// @param fileName absolute path; it and its folder are made when something is first written
    explicit Settings(const QString &fileName);

    /// Pulsebar/Pulsebar.conf in the user's configuration folder.
    static QString standardFileName();

    template <typename T> T value(const Preference<T> &preference)
    {
        return read<T>(preference.key).value_or(preference.fallback);
    }

    template <typename T> std::optional<T> value(const OptionalPreference<T> &preference)
    {
        return read<T>(preference.key);
    }

    template <typename T> void setValue(const Preference<T> &preference, const T &value)
    {
        write(preference.key, value);
    }

    template <typename T> void setValue(const OptionalPreference<T> &preference, const T &value)
    {
        write(preference.key, value);
    }

    template <typename T> void remove(const OptionalPreference<T> &preference)
    {
        removeKey(preference.key);
    }

    /// The text under a key of any characters, such as one with the name of a process. Absent when
    /// there is none; a value that is no single text is reported.
    std::optional<QString> text(const QString &key);
    void setText(const QString &key, const QString &text);
    void removeText(const QString &key) { removeKey(key); }
    bool hasText(const QString &key) const;
    /// The keys that begin so, in the order of the file.
    QStringList textKeys(const QString &beginning) const;

    /// Says in the log that a key's value is of no use.
    void reportMalformed(const QString &key) const;
    void reportMalformed(const char *key) const { reportMalformed(QString::fromLatin1(key)); }

    /// Puts every change on the disk. @return whether that worked; a failure is logged
    bool synchronize();

private:
    template <typename T> std::optional<T> read(const char *key);

    QVariant storedValue(const QString &key) const;
    QVariant storedValue(const char *key) const { return storedValue(QString::fromLatin1(key)); }
    void removeKey(const QString &key);
    void removeKey(const char *key) { removeKey(QString::fromLatin1(key)); }
    void write(const char *key, const QString &value);
    void write(const char *key, int value);
    void write(const char *key, qint64 value);
    void write(const char *key, bool value);
    void write(const char *key, float value);
    void write(const char *key, const QStringList &value);
    void write(const char *key, const QVector<int> &value);
    void write(const char *key, const QVector<bool> &value);
    void writeVariant(const QString &key, const QVariant &value);
    void writeVariant(const char *key, const QVariant &value)
    {
        writeVariant(QString::fromLatin1(key), value);
    }

    QSettings m_file;
    int m_batches = 0;
    bool m_synchronizeLater = false;
};

template <> std::optional<int> Settings::read<int>(const char *key);
template <> std::optional<qint64> Settings::read<qint64>(const char *key);
template <> std::optional<bool> Settings::read<bool>(const char *key);
template <> std::optional<float> Settings::read<float>(const char *key);
template <> std::optional<QString> Settings::read<QString>(const char *key);
template <> std::optional<QStringList> Settings::read<QStringList>(const char *key);
template <> std::optional<QVector<int>> Settings::read<QVector<int>>(const char *key);
template <> std::optional<QVector<bool>> Settings::read<QVector<bool>>(const char *key);

} // namespace pulsebar
