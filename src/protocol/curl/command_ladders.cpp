#include "protocol/curl/command_ladders.hpp"

#include "protocol/curl/remote_paths.hpp"

namespace perchftp::protocol::curl::detail {

namespace {

// The three spellings of one target that the ladders try.
struct TargetForms {
    std::string fullPath;
    std::string context;
    std::string name;
    std::string relative;

    explicit TargetForms(std::string const& path)
        : fullPath(normalizePath(path))
        , context(commandContextPath(fullPath))
        , name(commandTargetName(fullPath))
        , relative(stripLeadingSlash(fullPath))
    {
    }
};

void addAtRootAndHome(CommandLadder& ladder, std::vector<std::string> const& commands)
{
    ladder.push_back({"", commands});
    ladder.push_back({"/", commands});
}

} // namespace

CommandLadder renameLadder(std::string const& from, std::string const& to)
{
    TargetForms const source(from);
    TargetForms const target(to);
    CommandLadder ladder;
    if (!source.name.empty() && !target.name.empty()) {
        ladder.push_back({source.context, {"RNFR " + source.name, "RNTO " + target.name}});
    }
    if (!source.relative.empty() && !target.relative.empty()) {
        addAtRootAndHome(ladder, {"RNFR " + source.relative, "RNTO " + target.relative});
    }
    if (!source.fullPath.empty() && !target.fullPath.empty()) {
        addAtRootAndHome(ladder, {"RNFR " + source.fullPath, "RNTO " + target.fullPath});
    }
    return ladder;
}

CommandLadder removeLadder(std::string const& path)
{
    bool const directoryFirst = looksLikeDirectoryPath(path);
    std::string const first = directoryFirst ? "RMD " : "DELE ";
    std::string const second = directoryFirst ? "DELE " : "RMD ";
    TargetForms const target(path);
    CommandLadder ladder;
    if (!target.name.empty()) {
        ladder.push_back({target.context, {first + target.name}});
        ladder.push_back({target.context, {second + target.name}});
    }
    if (!target.relative.empty() && target.relative != target.name) {
        addAtRootAndHome(ladder, {first + target.relative});
        addAtRootAndHome(ladder, {second + target.relative});
    }
    if (!target.fullPath.empty() && target.fullPath != target.name) {
        addAtRootAndHome(ladder, {first + target.fullPath});
        addAtRootAndHome(ladder, {second + target.fullPath});
    }
    return ladder;
}

CommandLadder mkdirLadder(std::string const& path)
{
    TargetForms const target(path);
    CommandLadder ladder;
    if (!target.name.empty()) {
        ladder.push_back({target.context, {"MKD " + target.name}});
    }
    if (!target.relative.empty() && target.relative != target.name) {
        addAtRootAndHome(ladder, {"MKD " + target.relative});
    }
    if (!target.fullPath.empty() && target.fullPath != target.name) {
        addAtRootAndHome(ladder, {"MKD " + target.fullPath});
    }
    return ladder;
}

} // namespace perchftp::protocol::curl::detail
