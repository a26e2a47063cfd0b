#include "e2e/demo/Demonstration.h"

#include "e2e/Unmet.h"
#include "e2e/Wait.h"

#include <array>
#include <chrono>
#include <iostream>
#include <utility>

namespace stavelin::e2e {

namespace {

// Lines as people have them in their notes; none of them is a secret.
constexpr std::array<const char *, 3> lines{
    "Meet at the harbour office on Thursday at ten.",
    "git log --oneline --graph --decorate",
    "https://www.example.org/tide-tables",
};
const std::string letter = "The tide tables are here: ";

void say(const std::string &line)
{
    std::cout << line << std::endl;
}

std::string inQuotes(const std::string &text)
{
    return '"' + text + '"';
}

bool isStandingStill(const Screen &screen)
{
    constexpr std::chrono::milliseconds moment{300};
    const Picture before = screen.capture();
    return !waitUntil([&] { return screen.capture() != before; }, moment);
}

} // namespace

Demonstration::Demonstration(std::filesystem::path pictures) : m_pictures(std::move(pictures)) {}

void Demonstration::run()
{
    try {
        perform();
    } catch (const Unmet &) {
        say(m_desktop.logs());
        takePicture("failed");
        throw;
    }
}

void Demonstration::perform()
{
    arrange();
    takePicture("1-desktop-with-panel");

    for (std::size_t line = 0; line < lines.size(); ++line) {
        saveLine(static_cast<int>(line) + 1, lines.at(line));
    }
    takePicture("2-after-save");

    paste(3, letter + lines.at(2));
    takePicture("3-after-paste");
}

void Demonstration::arrange()
{
    std::string notes;
    for (const char *line : lines) {
        notes += std::string(line) + '\n';
    }
    m_witness = &m_desktop.openWitness(letter);
    m_mousepad = &m_desktop.openMousepad(notes);
    m_desktop.screen().place(m_witness->window(), {40, 440, 620, 260});
    m_desktop.screen().place(m_mousepad->window(), {40, 40, 620, 340});
    m_desktop.startStavelin();
    if (const auto panel = m_desktop.panel()) {
        m_desktop.screen().place(*panel, {760, 100, 320, 480});
    }
    say("Opened Mousepad with three lines of notes, a second text editor, and Stavelin.");
}

void Demonstration::saveLine(int line, const std::string &text)
{
    m_desktop.focus(*m_mousepad);
    m_desktop.press("Ctrl+Home");
    for (int down = 1; down < line; ++down) {
        m_desktop.press("Down");
    }
    m_desktop.press("Shift+End");
    m_desktop.press("Super+C");
    m_desktop.expectSlot(line, text);
    say("Saved " + inQuotes(text) + " from Mousepad into slot " + std::to_string(line) + " with Super+C.");
}

void Demonstration::paste(int slot, const std::string &expected)
{
    m_desktop.focus(*m_witness);
    m_desktop.press("Ctrl+End");
    m_desktop.press("Super+V");
    m_desktop.press(std::to_string(slot));
    m_desktop.expectText(*m_witness, expected);
    m_desktop.expectNoKeyDown();
    say("Pasted slot " + std::to_string(slot) + " into the second editor with Super+V and " +
        std::to_string(slot) + ": it now reads " + inQuotes(expected) + ".");
}

void Demonstration::takePicture(const std::string &name)
{
    // Windows paint a moment after they have what they show. A blinking cursor must not hold it up for long.
    waitUntil([this] { return isStandingStill(m_desktop.screen()); }, std::chrono::seconds(2));
    const std::filesystem::path file = m_pictures / (name + ".png");
    m_desktop.screenshot(file);
    say("Picture: " + file.string());
}

} // namespace stavelin::e2e
