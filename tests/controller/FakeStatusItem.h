#pragma once

#include "statusitem/StatusItem.h"

namespace pulsebar {

/// A status item that remembers what it was told.
class FakeStatusItem : public StatusItem
{
public:
    QString title() const override { return m_title; }
    void setTitle(const QString &title) override
    {
        m_title = title;
        Q_EMIT titleChanged(title);
    }
    void setTitleGuide(const QString &text) override { guide = text; }
    void setImage(const QString &image) override { m_image = image; }
    QString image() const override { return m_image; }
    double length() const override { return m_length; }
    void setLength(double length) override { m_length = length; }
    void setTitleOnPanel(TitleOnPanel way) override { how = way; }
    void setNeedsAttention(bool needed) override { needsAttention = needed; }
    void setMenuDelegate(MenuDelegate *menuDelegate) override { delegate = menuDelegate; }
    bool hasMenu() const override { return delegate != nullptr; }
    void openMenu() override { ++menusOpened; }

    QString guide;
    TitleOnPanel how = TitleOnPanel::Automatic;
    MenuDelegate *delegate = nullptr;
    bool needsAttention = false;
    int menusOpened = 0;

private:
    QString m_title;
    QString m_image;
    double m_length = 0.0;
};

} // namespace pulsebar
