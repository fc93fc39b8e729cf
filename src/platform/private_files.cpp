#include "platform/private_files.hpp"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

namespace perchftp::platform::detail {
namespace {

constexpr mode_t kOwnerOnlyFolder = S_IRWXU;
constexpr mode_t kOwnerOnlyFile = S_IRUSR | S_IWUSR;

class FileDescriptor {
public:
    explicit FileDescriptor(int fd)
        : fd_(fd)
    {
    }
    ~FileDescriptor()
    {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    FileDescriptor(FileDescriptor const&) = delete;
    FileDescriptor& operator=(FileDescriptor const&) = delete;

    int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }

private:
    int fd_;
};

int openRetryingOnSignal(std::filesystem::path const& file, int flags)
{
    int fd = -1;
    do {
        fd = ::open(file.c_str(), flags | O_CLOEXEC, kOwnerOnlyFile);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

} // namespace

bool createPrivateDirectories(std::filesystem::path const& folder, std::error_code& error)
{
    error.clear();
    std::vector<std::filesystem::path> missing;
    for (auto level = folder.lexically_normal(); !level.empty(); level = level.parent_path()) {
        if (std::filesystem::exists(level, error) || error) {
            break;
        }
        missing.push_back(level);
        if (level == level.parent_path()) {
            break;
        }
    }
    if (error) {
        return false;
    }
    for (auto it = missing.rbegin(); it != missing.rend(); ++it) {
        if (::mkdir(it->c_str(), kOwnerOnlyFolder) != 0 && errno != EEXIST) {
            error.assign(errno, std::generic_category());
            return false;
        }
    }
    if (!std::filesystem::is_directory(folder, error)) {
        if (!error) {
            error = std::make_error_code(std::errc::not_a_directory);
        }
        return false;
    }
    return true;
}

bool createPrivateFile(std::filesystem::path const& file)
{
    FileDescriptor const fd(openRetryingOnSignal(file, O_WRONLY | O_CREAT));
    if (fd) {
        return ::fchmod(fd.get(), kOwnerOnlyFile) == 0;
    }
    return restrictToOwner(file);
}

bool restrictToOwner(std::filesystem::path const& file)
{
    return ::chmod(file.c_str(), kOwnerOnlyFile) == 0;
}

bool writePrivateFile(std::filesystem::path const& file, std::string_view bytes)
{
    FileDescriptor const fd(openRetryingOnSignal(file, O_WRONLY | O_CREAT | O_TRUNC));
    if (!fd) {
        return false;
    }
    (void)::fchmod(fd.get(), kOwnerOnlyFile);
    while (!bytes.empty()) {
        auto const written = ::write(fd.get(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            break;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace perchftp::platform::detail
