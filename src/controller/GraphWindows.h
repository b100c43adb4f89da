#pragma once

#include <QString>
#include <QStringList>

namespace pulsebar {

/// The floating graphs, as menu, scripts and preferences reach them. A key names a series as
/// TopMonitor::cacheDataForKey() knows it; each has one window at most.
class GraphWindows
{
public:
    /// So many may be open at once.
    static constexpr qsizetype kMostOpen = 256;
    /// Characters of a key. Those of a process hold its name, which has fewer by far.
    static constexpr qsizetype kLongestKey = 1024;

    virtual ~GraphWindows() = default;

    /// Whether there can be a graph of that key: it is not empty, and no longer than kLongestKey.
    static bool isKey(const QString &key) { return !key.isEmpty() && key.size() <= kLongestKey; }

    /// Opens the window for the series of a graph key, or raises the one that is open. It shows
    /// even while all others are hidden. The series need not have samples.
    /// @return false, and nothing has changed, when there are kMostOpen, or it is no key
    virtual bool showGraphViewForKey(const QString &key) = 0;
    /// Closes the key's window. Does nothing when there is none.
    virtual void closeGraphViewForKey(const QString &key) = 0;
    /// The keys of the open windows, hidden ones too, in the order in which they were opened.
    virtual QStringList graphWindowKeys() const = 0;

    /// True while all graph windows are hidden.
    virtual bool hideGraphWindow() const = 0;
    virtual void hideAllGraphWindow() = 0;
    virtual void showAllGraphWindow() = 0;
    /// Hides all graph windows, or shows all again.
    void switchGraphWindow()
    {
        if (hideGraphWindow())
            showAllGraphWindow();
        else
            hideAllGraphWindow();
    }

    /// Hands the newest samples to every window, hidden ones too.
    virtual void feed() = 0;
    /// Stores each window's settings as when it closes. The windows stay open.
    virtual void storeSettings() = 0;
};

} // namespace pulsebar
