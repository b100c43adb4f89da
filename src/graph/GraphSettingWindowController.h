#pragma once

#include <QObject>
#include <QString>

#include <memory>

class QDialog;

namespace pulsebar {

class GraphSettingPanel;
class GraphViewSetting;
class GraphWindowController;

/// The panel in which the user edits the settings of one graph window: made when it is first asked
/// for, and gone with the window. Where it was is remembered for the window's key.
class GraphSettingWindowController : public QObject
{
    Q_OBJECT

public:
    /// @param mainController of the graph window; must outlive the panel
    explicit GraphSettingWindowController(GraphWindowController &mainController);
    ~GraphSettingWindowController() override;

    /// Shows the panel, or brings the open one to the front.
    void showWindow();
    bool isOpen() const;
    /// Closes the panel, as its close button does.
    void settingSheetOk();
    /// Takes the panel off the screen; how it ended does not matter.
    void settingSheetDidEnd(QDialog &sheet, int returnCode);
    /// Remembers where the panel is, or was when it was closed; nothing when it was never shown.
    void storeFrame();

private:
    void windowDidLoad();
    QString frameKey() const;
    void restoreFrame();

    GraphWindowController &m_mainWindowController;
    GraphViewSetting &m_viewSetting;
    std::unique_ptr<GraphSettingPanel> m_panel;
    bool m_wasShown = false;
};

} // namespace pulsebar
