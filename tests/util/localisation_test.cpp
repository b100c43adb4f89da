#include "support/QtPrinting.h"
#include "util/Localisation.h"

#include <QCoreApplication>
#include <QHash>
#include <QLocale>
#include <QTranslator>

#include <cstring>

namespace pulsebar {
namespace {

/// A catalogue of a few entries, "context/source" to text.
class Catalogue : public QTranslator
{
public:
    explicit Catalogue(QHash<QString, QString> texts)
        : m_texts(std::move(texts))
    {
        QCoreApplication::installTranslator(this);
    }
    ~Catalogue() override { QCoreApplication::removeTranslator(this); }
    QString translate(const char *context, const char *source, const char * /*disambiguation*/,
                      int /*n*/) const override
    {
        return m_texts.value(QString::fromUtf8(context) + u'/' + QString::fromUtf8(source));
    }
    bool isEmpty() const override { return false; }

private:
    QHash<QString, QString> m_texts;
};

TEST(Localisation, EnglishIsBuiltIn)
{
    EXPECT_EQ(localizedString(QStringLiteral("TitleOption_9")), QStringLiteral("Busiest Process"));
    EXPECT_EQ(localizedString(QStringLiteral("InByte")), QStringLiteral("In"));
    EXPECT_EQ(localizedString(QStringLiteral("Disk Menu Label10")),
              QStringLiteral("Time: %@ ms / %@ ms"));
    EXPECT_EQ(localizedString(QStringLiteral("Charging: ")), QStringLiteral("Charging: %.1f%%"));
    EXPECT_EQ(localizedString(QStringLiteral("MachMessageRecieve")),
              QStringLiteral("Mach Messages Received"));
}

TEST(Localisation, AKeyWithoutATextIsItsOwnText)
{
    EXPECT_EQ(localizedString(QStringLiteral("Top Title")), QStringLiteral("Top Title"));
    EXPECT_EQ(localizedString(QStringLiteral(" Hours"), QStringLiteral("NumberUtility"), QString()),
              QStringLiteral(" Hours"));
    EXPECT_EQ(localizedString(QStringLiteral("key"), QStringLiteral("Temperature"),
                              QStringLiteral("default")),
              QStringLiteral("default"));
}

TEST(Localisation, ACatalogueWins)
{
    const Catalogue german({{QStringLiteral("Default/InByte"), QStringLiteral("Ein")},
                            {QStringLiteral("NumberUtility/ Hours"), QStringLiteral(" Std.")}});
    EXPECT_EQ(localizedString(QStringLiteral("InByte")), QStringLiteral("Ein"));
    EXPECT_EQ(localizedString(QStringLiteral("OutByte")), QStringLiteral("Out"));
    EXPECT_EQ(localizedString(QStringLiteral(" Hours"), QStringLiteral("NumberUtility"), QString()),
              QStringLiteral(" Std."));
    EXPECT_EQ(englishString(QStringLiteral("InByte")), QStringLiteral("In"));
}

TEST(LocalizedFormat, FillsTheUsersTextWithTheUsersDecimalPoint)
{
    EXPECT_EQ(localizedFormat(QStringLiteral("free"), QStringLiteral("2.0GB"), 12.5),
              QStringLiteral("Free: 2.0GB (12.5%)"));
    EXPECT_EQ(localizedFormat(QStringLiteral("%.1f%%"), 3.14F), QStringLiteral("3.1%"));
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::French));
    EXPECT_EQ(localizedFormat(QStringLiteral("%.1f%%"), 3.14F), QStringLiteral("3,1%"));
    QLocale::setDefault(before);
}

TEST(LocalizedFormat, ATranslationMayReorder)
{
    const Catalogue reordered(
        {{QStringLiteral("Default/free"), QStringLiteral("%2$.0f%% libre (%1$@)")}});
    EXPECT_EQ(localizedFormat(QStringLiteral("free"), QStringLiteral("1MB"), 7.0),
              QStringLiteral("7% libre (1MB)"));
}

TEST(LocalizedFormat, ATranslationThatDoesNotFitGivesWayToEnglish)
{
    const Catalogue broken({{QStringLiteral("Default/free"), QStringLiteral("%s %n %@")},
                            {QStringLiteral("Default/%.1f%%"), QStringLiteral("%d")}});
    EXPECT_EQ(localizedFormat(QStringLiteral("free"), QStringLiteral("1MB"), 7.0),
              QStringLiteral("Free: 1MB (7.0%)"));
    EXPECT_EQ(localizedFormat(QStringLiteral("%.1f%%"), 7.0), QStringLiteral("7.0%"));
}

} // namespace
} // namespace pulsebar
