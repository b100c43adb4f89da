#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

namespace pulsebar {

class Settings;
class SystemFacts;
class UrlOpener;

/// A version's text as a number that grows with it: "1.0.1" is 101, "1.2" is 120, "2" is 200.
/// @param bundleVersion the version of the build; when it has no characters but points, the other
///                      one counts
int applicationVersionNumber(const QString &bundleVersion, const QString &shortVersion);

/// Processor cores of the machine, however many threads each runs; 1 when that cannot be told.
int numOfProcessorCores(const SystemFacts &facts);

/// What the program does for its user besides measuring: opening things and showing its manual.
class ApplicationUtility
{
public:
    /// @param opener  may be null: then nothing can be opened
    /// @param manuals places of the manual, the best first; all absolute
    ApplicationUtility(UrlOpener *opener, QStringList manuals);

    /// Opens a URL with the program that the user has chosen for it. What is no URL with a scheme
    /// is not opened.
    void openURL(const QUrl &url);
    /// The same for a URL as people write it: what may not stand in a URL (blanks, `%`, letters
    /// beyond ASCII) is escaped as UTF-8.
    void openURL(const QString &text);

    /// Opens the first manual that is there. Without one nothing happens but a line in the log.
    void showManual();
    /// Shows the manual once in a user's life, and stores at once that it was.
    void showManualIfItIsFirstLaunch(Settings &settings);

private:
    UrlOpener *m_opener;
    QStringList m_manuals;
};

} // namespace pulsebar
