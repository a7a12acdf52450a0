#include "platform/desktop/entries/StartedItem.h"
#include "platform/system/Users.h"
#include <algorithm>

namespace mac {

namespace {

constexpr std::string_view Blanks = " \t\n\r";
constexpr std::string_view ShellDividers = ";&|()\n";
// What ends a run of characters that stand for themselves.
constexpr std::string_view SpecialCharacters = " \t\n\r;&|()\"'\\$~";
// What a backslash takes the meaning from inside double quotes.
constexpr std::string_view EscapedInQuotes = "\"\\$`";

enum class Language { EntryCommand, EntryCommandWithApostrophes, Shell };

class CommandSplitter {
public:
    CommandSplitter(std::string_view text, Language language) : m_rest(text), m_language(language) {}

    // False if a quote does not end.
    bool split();
    std::vector<CommandWords> takeCommands() { return std::move(m_commands); }

private:
    bool isShell() const { return m_language == Language::Shell; }
    bool readQuoted(char quote);
    // Whether the home folder was put in for what stands at the front.
    bool expandHome();
    void take(std::size_t count) {
        word().append(m_rest.substr(0, count));
        m_rest.remove_prefix(count);
    }
    std::string& word();
    void endWord() { m_isInWord = false; }
    void endCommand() {
        endWord();
        if (!m_commands.back().empty()) m_commands.emplace_back();
    }

    std::string_view m_rest;
    Language m_language;
    std::vector<CommandWords> m_commands{1};
    bool m_isInWord{false};
};

std::string& CommandSplitter::word() {
    if (!m_isInWord) m_commands.back().emplace_back();
    m_isInWord = true;
    return m_commands.back().back();
}

bool CommandSplitter::expandHome() {
    if (!isShell()) return false;
    for (std::string_view const spelling : {"${HOME}", "$HOME"}) {
        if (!m_rest.starts_with(spelling)) continue;
        word() += ownHomeFolder();
        m_rest.remove_prefix(spelling.size());
        return true;
    }
    if (m_isInWord || !m_rest.starts_with("~/")) return false;
    word() += ownHomeFolder();
    m_rest.remove_prefix(1);
    return true;
}

bool CommandSplitter::readQuoted(char quote) {
    word();
    m_rest.remove_prefix(1);
    while (!m_rest.empty() && m_rest.front() != quote) {
        bool const isEscape = quote == '"' && m_rest.front() == '\\' && m_rest.size() > 1 &&
                              EscapedInQuotes.find(m_rest[1]) != std::string_view::npos;
        if (quote == '"' && expandHome()) continue;
        if (isEscape) m_rest.remove_prefix(1);
        take(1);
    }
    if (m_rest.empty()) return false;
    m_rest.remove_prefix(1);
    return true;
}

bool CommandSplitter::split() {
    while (!m_rest.empty()) {
        char const next = m_rest.front();
        if (isShell() && ShellDividers.find(next) != std::string_view::npos) {
            endCommand();
            m_rest.remove_prefix(1);
        } else if (Blanks.find(next) != std::string_view::npos) {
            endWord();
            m_rest.remove_prefix(1);
        } else if (next == '"' || (next == '\'' && m_language != Language::EntryCommandWithApostrophes)) {
            if (!readQuoted(next)) return false;
        } else if (next == '\\' && m_rest.size() > 1) {
            m_rest.remove_prefix(1);
            take(1);
        } else if (!expandHome()) {
            take(std::max<std::size_t>(1, std::min(m_rest.find_first_of(SpecialCharacters), m_rest.size())));
        }
    }
    return true;
}

// The word without codes for files, "%%" as "%".
std::string withoutFileCodes(std::string_view word) {
    if (word.find('%') == std::string_view::npos) return std::string(word);
    std::string result;
    for (std::size_t index = 0; index < word.size(); ++index) {
        if (word[index] != '%') {
            result.push_back(word[index]);
        } else if (++index < word.size() && word[index] == '%') {
            result.push_back('%');
        }
    }
    return result;
}

} // namespace

std::optional<CommandWords> wordsOfEntryCommand(std::string_view commandLine) {
    for (Language const language : {Language::EntryCommand, Language::EntryCommandWithApostrophes}) {
        CommandSplitter splitter(commandLine, language);
        if (!splitter.split()) continue;
        std::vector<CommandWords> const commands = splitter.takeCommands();
        CommandWords words;
        for (std::string const& written : commands.front()) {
            std::string word = withoutFileCodes(written);
            if (!word.empty() || written.empty()) words.push_back(std::move(word));
        }
        return words;
    }
    return std::nullopt;
}

std::vector<CommandWords> commandsOfShellText(std::string_view text) {
    CommandSplitter splitter(text, Language::Shell);
    // A shell would refuse a quote without end; what stands in it is the best guess of what was meant.
    (void)splitter.split();
    std::vector<CommandWords> commands = splitter.takeCommands();
    if (commands.back().empty()) commands.pop_back();
    return commands;
}

} // namespace mac
