#include "model/classification/WellKnownServices.h"

#include <algorithm>
#include <array>

namespace stavelin::model::classification {

namespace {

struct Service
{
    std::string_view host;
    std::string_view label;
};

constexpr auto services = [] {
    auto table = std::to_array<Service>({
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
        // the portal lies below it
        {"azure.com", "Azure"},
        // the console lies below it
        {"cloud.google.com", "GCP"},
        {"vercel.com", "Vercel"},
        {"netlify.com", "Netlify"},
        {"heroku.com", "Heroku"},
        {"reddit.com", "Reddit"},
        {"apple.com", "Apple"},
        {"developer.apple.com", "Apple Developer"},
    });
    std::ranges::sort(table, {}, &Service::host);
    return table;
}();
static_assert(services.size() == 37);

constexpr std::size_t longestHost =
    std::ranges::max(services, {}, [](const Service &service) { return service.host.size(); }).host.size();

const Service *serviceAt(std::string_view host)
{
    const auto found = std::ranges::lower_bound(services, host, {}, &Service::host);
    return found != services.end() && found->host == host ? &*found : nullptr;
}

} // namespace

std::optional<std::string_view> wellKnownService(std::string_view host)
{
    // From the whole host to ever shorter ends of it, so the first one found is the longest.
    for (;;) {
        if (host.size() <= longestHost) {
            if (const Service *service = serviceAt(host)) {
                return service->label;
            }
        }
        const std::size_t dot = host.find('.');
        if (dot == std::string_view::npos) {
            return std::nullopt;
        }
        host.remove_prefix(dot + 1);
    }
}

} // namespace stavelin::model::classification
