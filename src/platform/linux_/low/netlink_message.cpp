#include "platform/linux_/low/netlink_message.h"

#include <linux/netlink.h>

#include <algorithm>

namespace pulsebar {

std::string_view netlinkText(NetlinkBytes bytes)
{
    const std::string_view text(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    return text.substr(0, text.find('\0'));
}

std::optional<NetlinkAttribute> NetlinkAttributes::next()
{
    const auto header = netlinkRecord<nlattr>(m_rest);
    if (!header || header->nla_len < sizeof(nlattr) || header->nla_len > m_rest.size())
        return std::nullopt;
    const NetlinkAttribute attribute{
        static_cast<std::uint16_t>(header->nla_type & NLA_TYPE_MASK),
        m_rest.subspan(sizeof(nlattr), header->nla_len - sizeof(nlattr))};
    const std::size_t padded = (header->nla_len + std::size_t{3}) & ~std::size_t{3};
    m_rest = m_rest.subspan(std::min(padded, m_rest.size()));
    return attribute;
}

} // namespace pulsebar
