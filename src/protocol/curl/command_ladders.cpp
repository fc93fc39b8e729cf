#include "protocol/curl/command_ladders.hpp"

#include "protocol/curl/remote_paths.hpp"

#include <utility>

namespace perchftp::protocol::curl::detail {

namespace {

// The three spellings of one target that the ladders try, and the path they all should reach.
struct TargetForms {
    std::string fullPath;
    std::string context;
    std::string name;
    std::string relative;
    std::string plain;

    explicit TargetForms(std::string const& path)
        : fullPath(normalizePath(path))
        , context(commandContextPath(fullPath))
        , name(commandTargetName(fullPath))
        , relative(stripLeadingSlash(fullPath))
        , plain(plainAbsolutePath(fullPath))
    {
    }
};

// One command line, "verb argument", and the target its argument must reach.
struct AimedCommand {
    std::string verb;
    std::string argument;
    std::string target;
};

std::vector<std::string> const kAtLoginAndRoot{"", "/"};

class LadderBuilder {
public:
    explicit LadderBuilder(std::string loginFolder)
        : loginFolder_(std::move(loginFolder))
    {
    }

    // One attempt per context, unless a command would act on another path than its target.
    void add(std::vector<std::string> const& contexts, std::vector<AimedCommand> const& commands)
    {
        std::vector<std::string> lines;
        for (AimedCommand const& command : commands) {
            if (command.target.empty() || commandLandingPath(command.argument, loginFolder_) != command.target) {
                return;
            }
            lines.push_back(command.verb + command.argument);
        }
        for (std::string const& context : contexts) {
            ladder_.push_back({context, lines});
        }
    }

    CommandLadder take() { return std::move(ladder_); }

private:
    std::string loginFolder_;
    CommandLadder ladder_;
};

} // namespace

CommandLadder renameLadder(std::string const& from, std::string const& to, std::string const& loginFolder)
{
    TargetForms const source(from);
    TargetForms const target(to);
    LadderBuilder ladder(loginFolder);
    auto const pair = [&](std::string const& fromForm, std::string const& toForm) {
        return std::vector<AimedCommand>{{"RNFR ", fromForm, source.plain}, {"RNTO ", toForm, target.plain}};
    };
    if (!source.name.empty() && !target.name.empty()) {
        ladder.add({source.context}, pair(source.name, target.name));
    }
    if (!source.relative.empty() && !target.relative.empty()) {
        ladder.add(kAtLoginAndRoot, pair(source.relative, target.relative));
    }
    if (!source.fullPath.empty() && !target.fullPath.empty()) {
        ladder.add(kAtLoginAndRoot, pair(source.fullPath, target.fullPath));
    }
    return ladder.take();
}

CommandLadder removeLadder(std::string const& path, std::string const& loginFolder)
{
    bool const directoryFirst = looksLikeDirectoryPath(path);
    std::string const first = directoryFirst ? "RMD " : "DELE ";
    std::string const second = directoryFirst ? "DELE " : "RMD ";
    TargetForms const target(path);
    LadderBuilder ladder(loginFolder);
    if (!target.name.empty()) {
        ladder.add({target.context}, {{first, target.name, target.plain}});
        ladder.add({target.context}, {{second, target.name, target.plain}});
    }
    if (!target.relative.empty() && target.relative != target.name) {
        ladder.add(kAtLoginAndRoot, {{first, target.relative, target.plain}});
        ladder.add(kAtLoginAndRoot, {{second, target.relative, target.plain}});
    }
    if (!target.fullPath.empty() && target.fullPath != target.name) {
        ladder.add(kAtLoginAndRoot, {{first, target.fullPath, target.plain}});
        ladder.add(kAtLoginAndRoot, {{second, target.fullPath, target.plain}});
    }
    return ladder.take();
}

CommandLadder mkdirLadder(std::string const& path, std::string const& loginFolder)
{
    TargetForms const target(path);
    LadderBuilder ladder(loginFolder);
    if (!target.name.empty()) {
        ladder.add({target.context}, {{"MKD ", target.name, target.plain}});
    }
    if (!target.relative.empty() && target.relative != target.name) {
        ladder.add(kAtLoginAndRoot, {{"MKD ", target.relative, target.plain}});
    }
    if (!target.fullPath.empty() && target.fullPath != target.name) {
        ladder.add(kAtLoginAndRoot, {{"MKD ", target.fullPath, target.plain}});
    }
    return ladder.take();
}

} // namespace perchftp::protocol::curl::detail
