// Completions for shells. Each knows the verbs, the options of a verb, and what values an option takes: words of
// a list, files, folders, or something that cannot be guessed.
#include "pages.h"

#include <algorithm>
#include <string_view>

namespace zkr::app {

namespace {

std::string Joined(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words)
        line += (line.empty() ? "" : " ") + word;
    return line;
}

// A help text in one line and without what stands in brackets at its end, for shells that show a description.
std::string Brief(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text.substr(0, text.find(" (default"));
}

// Text with a backslash before each of some characters.
std::string Escaped(const std::string& text, std::string_view characters) {
    std::string escaped;
    for (const char letter : text) {
        if (characters.find(letter) != characters.npos) escaped += '\\';
        escaped += letter;
    }
    return escaped;
}

// In single quotes, as the shells of POSIX take them.
std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char letter : text)
        quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    return quoted + "'";
}

std::vector<std::string> NamesOf(const ToldVerb& verb) {
    std::vector<std::string> names;
    for (const ToldOption& option : verb.options)
        names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

std::string Head(const char* shell) {
    return std::string("# Completion of the words of zkr for ") + shell + ", made by zkr --print " + shell +
           ".\n";
}

std::string BashActionOf(const ToldOption& option) {
    std::string action;
    if (!option.values.empty()) action += "words=" + Quoted(Joined(option.values)) + "; ";
    if (option.takesFiles) action += "files=-f; ";
    if (option.takesFolders) action += "files=-d; ";
    return action.empty() ? ":; " : action;
}

} // namespace

std::string BashCompletion(const ToldProgram& program) {
    std::string verbs = "--help --version";
    std::string values;
    std::string options;
    for (const ToldVerb& verb : program.verbs) {
        verbs += " " + verb.name;
        for (const ToldOption& option : verb.options) {
            if (!option.isFlag)
                values +=
                    "    '" + verb.name + " " + option.names.back() + "') " + BashActionOf(option) + ";;\n";
        }
        options += "        " + verb.name + ") words=" + Quoted(Joined(NamesOf(verb))) + " ;;\n";
    }
    return Head("bash") + R"(_zkr() {
    local word="${COMP_WORDS[COMP_CWORD]}" verb="${COMP_WORDS[1]}" words="" files=""
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        COMPREPLY=($(compgen -W ')" +
           verbs + R"(' -- "$word"))
        return
    fi
    case "$verb ${COMP_WORDS[COMP_CWORD - 1]}" in
)" + values +
           R"(    *)
        files=-f
        case "$verb" in
)" + options +
           R"(        esac
        [[ "$word" == -* ]] || words=""
        ;;
    esac
    [ -z "$words" ] || COMPREPLY=($(compgen -W "$words" -- "$word"))
    if [ -n "$files" ] && [[ "$word" != -* ]]; then
        local IFS=$'\n'
        COMPREPLY+=($(compgen "$files" -- "$word"))
        compopt -o filenames 2>/dev/null
    fi
}
complete -F _zkr zkr
)";
}

namespace {

// What _arguments does for a value.
std::string ZshActionOf(const ToldOption& option) {
    if (option.takesFolders) return "_files -/";
    if (option.takesFiles && option.values.empty()) return "_files";
    if (option.takesFiles)
        return "_alternative \"words\\:word\\:(" + Joined(option.values) + ")\" \"files\\:file\\:_files\"";
    return option.values.empty() ? "" : "(" + Joined(option.values) + ")";
}

std::string ZshEntries(const ToldOption& option) {
    std::string entries;
    const std::string help = Escaped(Brief(option.help), "\\[]:");
    for (const std::string& name : option.names) {
        std::string entry = name + "[" + help + "]";
        if (!option.isFlag) entry += ":" + Escaped(option.form, "\\:") + ":" + ZshActionOf(option);
        entries += " \\\n            " + Quoted(entry);
    }
    return entries;
}

} // namespace

std::string ZshCompletion(const ToldProgram& program) {
    std::string verbs;
    std::string options;
    for (const ToldVerb& verb : program.verbs) {
        verbs += "        " + Quoted(verb.name + ":" + verb.help) + "\n";
        options += "    " + verb.name + ")\n        _arguments";
        for (const ToldOption& option : verb.options)
            options += ZshEntries(option);
        for (const ToldOption& word : verb.words)
            options += " \\\n            " + Quoted((word.takesMany ? "*:" : ":") + word.word + ":_files");
        options += "\n        ;;\n";
    }
    return "#compdef zkr\n" + Head("zsh") + R"(_zkr() {
    local curcontext="$curcontext" state line
    local -a verbs
    verbs=(
)" + verbs +
           R"(    )
    _arguments -C '(- *)'{-h,--help}'[print help]' '(- *)--version[print the version]' '1:verb:->verb' '*::word:->words'
    case "$state" in
    verb)
        _describe verb verbs
        return
        ;;
    esac
    case "$line[1]" in
)" + options +
           R"(    esac
}
_zkr "$@"
)";
}

std::string FishCompletion(const ToldProgram& program) {
    std::string page = Head("fish");
    page += "complete -c zkr -n __fish_use_subcommand -f\n";
    page += "complete -c zkr -n __fish_use_subcommand -s h -l help -d 'Print help'\n";
    page += "complete -c zkr -n __fish_use_subcommand -l version -d 'Print the version'\n";
    for (const ToldVerb& verb : program.verbs) {
        page += "complete -c zkr -n __fish_use_subcommand -a " + verb.name + " -d '" +
                Escaped(verb.help, "\\'") + "'\n";
        for (const ToldOption& option : verb.options) {
            page += "complete -c zkr -n '__fish_seen_subcommand_from " + verb.name + "'";
            for (const std::string& name : option.names)
                page += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
            if (!option.isFlag) page += option.takesFiles ? " -r" : " -x";
            if (option.takesFolders) page += " -a '(__fish_complete_directories)'";
            if (!option.values.empty()) page += " -a '" + Joined(option.values) + "'";
            page += " -d '" + Escaped(Brief(option.help), "\\'") + "'\n";
        }
    }
    return page;
}

} // namespace zkr::app
