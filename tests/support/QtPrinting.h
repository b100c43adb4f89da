#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

#include <gtest/gtest.h>

#include <ostream>

/// Lets GoogleTest show Qt's values as text.
QT_BEGIN_NAMESPACE

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList &list, std::ostream *out)
{
    PrintTo(list.join(QStringLiteral(" | ")), out);
}

inline void PrintTo(const QVariant &value, std::ostream *out)
{
    *out << value.typeName() << ' ' << value.toString().toStdString();
}

QT_END_NAMESPACE
