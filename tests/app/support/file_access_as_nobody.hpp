#pragma once

#include <sys/fsuid.h>
#include <unistd.h>

namespace perchftp::test {

// While it lives, this thread's file access is checked as "nobody", which takes away even root's
// right to read everything. The shell does its file work on the calling thread, so that is enough
// to make a folder unreadable to it.
class FileAccessAsNobody {
public:
    FileAccessAsNobody()
    {
        ::setfsgid(kNobody);
        ::setfsuid(kNobody);
    }
    ~FileAccessAsNobody()
    {
        ::setfsuid(uid_);
        ::setfsgid(gid_);
    }
    FileAccessAsNobody(FileAccessAsNobody const&) = delete;
    FileAccessAsNobody& operator=(FileAccessAsNobody const&) = delete;

private:
    static constexpr unsigned kNobody = 65534;
    uid_t uid_ = ::geteuid();
    gid_t gid_ = ::getegid();
};

} // namespace perchftp::test
