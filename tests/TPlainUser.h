#pragma once

#include <gtest/gtest.h>

#include <grp.h>
#include <sys/types.h>
#include <unistd.h>
#include <vector>

namespace tarn {

/// Root may read and write everything; the tests of permissions lay that down for their time, the
/// rights of root's groups included.
class TPlainUser {
public:
    TPlainUser() : FWasRoot(::geteuid() == 0) {
        if (!FWasRoot) return;
        FGroups.resize(static_cast<std::size_t>(::getgroups(0, nullptr)));
        EXPECT_GE(::getgroups(static_cast<int>(FGroups.size()), FGroups.data()), 0);
        EXPECT_EQ(::setgroups(0, nullptr) + ::setegid(Nobody) + ::seteuid(Nobody), 0);
    }
    TPlainUser(const TPlainUser&) = delete;
    TPlainUser& operator=(const TPlainUser&) = delete;
    ~TPlainUser() {
        if (!FWasRoot) return;
        EXPECT_EQ(::seteuid(0) + ::setegid(0) + ::setgroups(FGroups.size(), FGroups.data()), 0);
    }

    static constexpr id_t Nobody = 65534;

private:
    bool FWasRoot;
    std::vector<gid_t> FGroups;
};

} // namespace tarn
