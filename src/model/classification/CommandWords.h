#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace stavelin::model::classification {

/// The first words that make a line a shell command, sorted by bytes. Case-sensitive.
inline constexpr auto commandWords = [] {
    auto words = std::to_array<std::string_view>({"npm",      "npx",        "yarn",    "pnpm",
                                                  "bun",      "git",        "gh",      "pip",
                                                  "pip3",     "python",     "python3", "poetry",
                                                  "pipenv",   "uv",         "docker",  "docker-compose",
                                                  "kubectl",  "podman",     "helm",    "brew",
                                                  "apt",      "apt-get",    "yum",     "dnf",
                                                  "pacman",   "snap",       "cargo",   "rustc",
                                                  "rustup",   "go",         "gofmt",   "swift",
                                                  "swiftc",   "xcodebuild", "xcrun",   "xcode-select",
                                                  "curl",     "wget",       "http",    "httpie",
                                                  "ssh",      "scp",        "rsync",   "sftp",
                                                  "make",     "cmake",      "ninja",   "meson",
                                                  "gradle",   "mvn",        "ant",     "node",
                                                  "deno",     "tsx",        "ts-node", "ruby",
                                                  "gem",      "bundle",     "rake",    "php",
                                                  "composer", "terraform",  "ansible", "vagrant",
                                                  "aws",      "az",         "gcloud",  "firebase",
                                                  "heroku",   "vercel",     "netlify", "fly",
                                                  "cd",       "ls",         "mkdir",   "rm",
                                                  "cp",       "mv",         "cat",     "grep",
                                                  "find",     "chmod",      "chown",   "sudo",
                                                  "su"});
    std::ranges::sort(words);
    return words;
}();

static_assert(commandWords.size() == 85);
static_assert(std::ranges::adjacent_find(commandWords) == commandWords.end(), "a word stands twice");

} // namespace stavelin::model::classification
