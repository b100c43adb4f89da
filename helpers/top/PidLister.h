#pragma once

#include "top/ProcessSource.h"

#include <memory>

namespace pulsebar::top {

/// Lists the numbered folders of /proc.
///
/// The position of a process in that folder is its number plus a constant. That is an observation,
/// not an interface: the constant is measured over each whole listing, and new processes alone are
/// listed (by seeking to the number given out last) only while it held for every entry.
class PidLister
{
public:
    /// `folder`: a descriptor of /proc, which stays the caller's.
    explicit PidLister(int folder);

    /// As ProcessSource says.
    bool listAll(const ListHint &hint, std::vector<pid_t> &pids);
    bool listNew(const ListHint &hint, std::vector<pid_t> &pids);

private:
    struct Calibration;

    template <typename Take> bool readFrom(std::int64_t position, std::size_t space, Take take);
    bool mayListNew(const ListHint &hint) const;
    void remember(const ListHint &hint);

    int m_folder;
    std::vector<char> m_space;
    std::optional<std::int64_t> m_offset; ///< position of a process minus its number
    ListHint m_last;                      ///< of the last listing
    /// A number is given out before its process can be seen in the folder: each search begins at
    /// what was the last number one listing earlier.
    pid_t m_searchFrom = 0;
};

} // namespace pulsebar::top
