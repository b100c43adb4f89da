#pragma once

#include "engine/Collectors.h"
#include "sensors/SmcLink.h"

#include <string>
#include <vector>

namespace pulsebar {

/// Reads the fans through the SMC.
class Fans : public FanCollector
{
public:
    /// @param smc outlives the collector
    /// @param keys the list: dictionaries with "Key" and "SMCKey", a format with the fan's number
    ///     (SensorLists.h)
    Fans(SmcLink &smc, const QVariantList &keys);

    /// Absent when the key "FNum" cannot be read. A fan's key that cannot be read is 0; without a
    /// fan the average is not a number.
    std::optional<QVariantMap> SMCGetFanMove() override;
    QVariantList fanKeys() const override { return m_fanKeys; }

private:
    struct Figure
    {
        QString name;
        QString format;
        std::vector<std::string> keys; ///< by fan, as far as they were needed
    };

    QVariantMap fanData(std::size_t fan, SmcTransport &smc);
    static const std::string &keyOf(Figure &figure, std::size_t fan);

    SmcLink &m_smc;
    QVariantList m_fanKeys;
    std::vector<Figure> m_figures;
};

} // namespace pulsebar
