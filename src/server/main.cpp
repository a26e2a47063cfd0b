#include "model/classification/Classifier.h"
#include "server/LeveledLog.h"
#include "server/Server.h"
#include "server/SessionEnvironment.h"
#include "server/StandardErrorLog.h"
#include "server/X11Pasteboard.h"
#include "server/store/SlotStore.h"
#include "server/store/StoreLock.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <boost/asio/signal_set.hpp>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace stavelin;

constexpr std::uint16_t port = 9847;

constexpr const char *helpText =
    "Usage: stavelin-daemon [--help | --version]\n"
    "\n"
    "Keeps the clipboard slots of Stavelin and serves them on ws://127.0.0.1:9847.\n"
    "It runs until it gets SIGTERM or SIGINT. The store is $XDG_DATA_HOME/Stavelin.\n"
    "\n"
    "RUST_LOG   how much is logged on standard error: off, error, warn, info (the\n"
    "           default), debug, trace\n";

/// The exit status when the arguments end the program here.
std::optional<int> answerArguments(int argc, char **argv)
{
    if (argc < 2)
        return std::nullopt;
    const std::string_view argument = argv[1];
    if (argc == 2 && (argument == "--help" || argument == "-h")) {
        std::fputs(helpText, stdout);
        return EXIT_SUCCESS;
    }
    if (argc == 2 && (argument == "--version" || argument == "-V")) {
        std::puts("stavelin-daemon " STAVELIN_VERSION);
        return EXIT_SUCCESS;
    }
    std::fputs(helpText, stderr);
    return 2;
}

/// What is true of the whole process, before it has a second thread.
void settleProcess()
{
    ::umask(S_IRWXG | S_IRWXO);
    // The memory holds secrets, and a core file would be a copy of it.
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    // A client that has gone is an error of the write to it; the terminal that started the daemon may close.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGHUP, SIG_IGN);
    // What one large text took is given back after it, instead of raising the bar for the next.
    ::mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    ::mallopt(M_TRIM_THRESHOLD, 128 * 1024);
    // The daemon outlives its starter and must not keep a disk from being unmounted.
    [[maybe_unused]] const int result = ::chdir("/");
}

int serve(server::LeveledLog &log)
{
    const server::SessionEnvironment environment(server::SessionEnvironment::sourcesOfThisProcess());
    const auto dataFolder = environment.dataFolder();
    if (!dataFolder) {
        log.error("There is no home folder to keep the slots in.");
        return EXIT_FAILURE;
    }
    const std::filesystem::path folder = *dataFolder / "Stavelin";

    boost::asio::io_context io(1);
    // The port comes first: of two daemons that start at the same time only the one that has it touches the
    // store.
    auto listening = server::Server::listen(io, port, log);
    if (!listening) {
        if (listening.error().isInUse)
            log.error("Port " + std::to_string(port) + " is in use: a stavelin-daemon is running already.");
        else
            log.error("Port " + std::to_string(port) + " cannot be used: " + listening.error().description);
        return EXIT_FAILURE;
    }
    const auto lock = server::StoreLock::take(folder);
    if (!lock) {
        log.error("The store in " + folder.string() + " is in use: a stavelin-daemon is running already.");
        return EXIT_FAILURE;
    }
    server::SlotStore store(folder, log, std::chrono::system_clock::now);
    server::X11Pasteboard pasteboard(io, environment, log);
    const std::unique_ptr<server::Server> server = std::move(*listening);

    boost::asio::signal_set signals(io, SIGTERM, SIGINT);
    signals.async_wait([&](boost::system::error_code error, int) {
        if (!error)
            server->stop([&io] { io.stop(); });
    });
    server->serve(store, pasteboard, [](std::string_view text) {
        return model::classify(text).type == model::ContentType::apiKey;
    });
    log.info("Listening on ws://127.0.0.1:" + std::to_string(port));
    io.run();
    log.info("Ended.");
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv)
{
    if (const auto status = answerArguments(argc, argv))
        return *status;
    settleProcess();
    server::StandardErrorLog lines;
    const char *filter = std::getenv("RUST_LOG");
    server::LeveledLog log(lines, server::logLevelFromFilter(filter == nullptr ? "" : filter),
                           std::chrono::system_clock::now);
    return serve(log);
}
