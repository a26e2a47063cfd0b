#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

/// Tables of their own: were they shared with the classifier, a slip in them would go unseen.
namespace stavelin::testkit {

inline const std::vector<std::string> referencePrefixes{
    "sk-",   "pk_",   "sk_",   "api_", "ghp_", "gho_", "ghs_", "ghr_",    "xoxb-",
    "xoxp-", "xoxa-", "xoxr-", "AKIA", "ABIA", "ACCA", "AGPA", "AIDA",    "AIPA",
    "ANPA",  "ANVA",  "APKA",  "AROA", "ASCA", "ASIA", "eyJ",  "Bearer ", "bearer "};

inline const std::set<std::string> referenceCommands{
    "npm",     "npx",        "yarn",    "pnpm",         "bun",      "git",       "gh",      "pip",
    "pip3",    "python",     "python3", "poetry",       "pipenv",   "uv",        "docker",  "docker-compose",
    "kubectl", "podman",     "helm",    "brew",         "apt",      "apt-get",   "yum",     "dnf",
    "pacman",  "snap",       "cargo",   "rustc",        "rustup",   "go",        "gofmt",   "swift",
    "swiftc",  "xcodebuild", "xcrun",   "xcode-select", "curl",     "wget",      "http",    "httpie",
    "ssh",     "scp",        "rsync",   "sftp",         "make",     "cmake",     "ninja",   "meson",
    "gradle",  "mvn",        "ant",     "node",         "deno",     "tsx",       "ts-node", "ruby",
    "gem",     "bundle",     "rake",    "php",          "composer", "terraform", "ansible", "vagrant",
    "aws",     "az",         "gcloud",  "firebase",     "heroku",   "vercel",    "netlify", "fly",
    "cd",      "ls",         "mkdir",   "rm",           "cp",       "mv",        "cat",     "grep",
    "find",    "chmod",      "chown",   "sudo",         "su"};

inline const std::map<std::string, std::vector<std::string>> referenceLanguageMarkers{
    {"TypeScript",
     {": string", ": number", ": boolean", "interface ", ": Promise<", "<T>", "as const", ": void"}},
    {"JavaScript",
     {"const ", "let ", "var ", "=> ", "function ", "async ", "await ", "import ", "export ", "require(",
      "module.exports", "console.log"}},
    {"Python",
     {"def ", "class ", "import ", "from ", "if __name__", "self.", "print(", "elif ", "except:", "lambda ",
      "async def", "await "}},
    {"Swift",
     {"func ", "var ", "let ", "guard ", "if let ", "struct ", "enum ", "@State", "@Binding", "@Published",
      "@Observable", "some View", "-> Void", "-> Bool", "-> String", "-> Int", "?."}},
    {"Rust",
     {"fn ", "let mut ", "impl ", "pub fn", "pub struct", "pub enum", "-> Result<", "-> Option<", "&self",
      "&mut ", "::new()", "unwrap()"}},
    {"Go",
     {"func ", "package ", "import (", "type ", "go func", "defer ", "make(", "range ", ":= ", "interface{}",
      "err != nil"}},
    {"Kotlin",
     {"fun ", "val ", "var ", "data class", "suspend fun", "?: ", "?.let", "object ", "companion object"}},
    {"Java",
     {"public class", "private ", "protected ", "public static void main", "System.out", "@Override", "new ",
      "ArrayList<", "HashMap<"}},
    {"C++",
     {"std::", "cout <<", "cin >>", "template<", "class ", "namespace ", "vector<", "string ", "nullptr",
      "auto "}},
    {"C",
     {"#include", "int main", "printf(", "malloc(", "free(", "sizeof(", "NULL", "void *", "char *", "int *"}},
    {"Ruby",
     {"def ", "end", "puts ", "require ", "attr_", "class ", "module ", "do |", ".each ", ".map ", "nil",
      "#{"}},
    {"HTML",
     {"<html", "<div", "<span", "<p>", "<head", "<body", "<!DOCTYPE", "<script", "<style", "<link", "<meta",
      "</"}},
    {"CSS",
     {"display:", "margin:", "padding:", "color:", "background:", "font-size:", "border:", "flex:", "grid:",
      "@media"}},
    {"YAML", {"---", "- ", ": |", ": >", "  - "}},
    {"SQL",
     {"SELECT ", "INSERT ", "UPDATE ", "DELETE ", "CREATE TABLE", "DROP TABLE", "ALTER TABLE", "FROM ",
      "WHERE ", "JOIN ", "ORDER BY"}},
    {"Shell",
     {"#!/bin/bash", "#!/bin/sh", "#!/bin/zsh", "echo ", "export ", "if [", "then", "fi", "for ", "done",
      "while ", "case "}},
};

inline const std::map<std::string, std::string> referenceServices{
    {"github.com", "GitHub"},
    {"gitlab.com", "GitLab"},
    {"bitbucket.org", "Bitbucket"},
    {"figma.com", "Figma"},
    {"notion.so", "Notion"},
    {"slack.com", "Slack"},
    {"discord.com", "Discord"},
    {"discord.gg", "Discord"},
    {"twitter.com", "Twitter"},
    {"x.com", "X"},
    {"linkedin.com", "LinkedIn"},
    {"stackoverflow.com", "Stack Overflow"},
    {"medium.com", "Medium"},
    {"youtube.com", "YouTube"},
    {"youtu.be", "YouTube"},
    {"google.com", "Google"},
    {"docs.google.com", "Google Docs"},
    {"drive.google.com", "Google Drive"},
    {"sheets.google.com", "Google Sheets"},
    {"dropbox.com", "Dropbox"},
    {"trello.com", "Trello"},
    {"jira.atlassian.com", "Jira"},
    {"confluence.atlassian.com", "Confluence"},
    {"npmjs.com", "npm"},
    {"pypi.org", "PyPI"},
    {"crates.io", "Crates"},
    {"hub.docker.com", "Docker Hub"},
    {"console.aws.amazon.com", "AWS"},
    {"aws.amazon.com", "AWS"},
    {"azure.com", "Azure"},
    {"cloud.google.com", "GCP"},
    {"vercel.com", "Vercel"},
    {"netlify.com", "Netlify"},
    {"heroku.com", "Heroku"},
    {"reddit.com", "Reddit"},
    {"apple.com", "Apple"},
    {"developer.apple.com", "Apple Developer"},
};

} // namespace stavelin::testkit
