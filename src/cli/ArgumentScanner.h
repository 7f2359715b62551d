// The walk over one command level's arguments, shared by every command's parser.
#pragma once

#include "cli/Failure.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace glyphmill::cli {

// Walks one level's arguments: options until "--", positionals anywhere. Mistakes are kept, not
// thrown at once, so that a --help later on the line still shows the help.
class Scanner {
public:
    explicit Scanner(std::span<const char *const> arguments) : arguments_(arguments) {}

    struct Token {
        bool isOption;
        std::string_view text;                       // the option's name with its dashes, or the positional
        std::optional<std::string_view> inlineValue; // after "=" in "--name=value"
    };

    std::optional<Token> next() {
        while (index_ < arguments_.size()) {
            std::string_view argument = arguments_[index_++];
            if (optionsEnded_ || argument == "-" || !argument.starts_with('-'))
                return Token{false, argument, std::nullopt};
            if (argument == "--") {
                optionsEnded_ = true;
                continue;
            }
            auto equals = argument.find('=');
            if (argument.starts_with("--") && equals != std::string_view::npos)
                return Token{true, argument.substr(0, equals), argument.substr(equals + 1)};
            return Token{true, argument, std::nullopt};
        }
        return std::nullopt;
    }

    // The option's value: inline after "=", or the next argument whatever it looks like.
    std::optional<std::string_view> value(const Token &option) {
        if (option.inlineValue)
            return option.inlineValue;
        if (index_ < arguments_.size())
            return std::string_view(arguments_[index_++]);
        noteMistake("option " + std::string(option.text) + " needs a value");
        return std::nullopt;
    }

    // Help, version or a mistake for an option every level shares; false if the option is another.
    bool takeCommonOption(const Token &option) {
        if (option.text == "--help" || option.text == "-h")
            wantsHelp = true;
        else if (option.text == "--version")
            wantsVersion = true;
        else
            return false;
        if (option.inlineValue)
            noteMistake("option " + std::string(option.text) + " takes no value");
        return true;
    }

    void noteUnknownOption(const Token &option) {
        noteMistake("unknown option " + quoted(option.text) + " (see --help)");
    }

    void noteMistake(std::string message) {
        if (!mistake)
            mistake = std::move(message);
    }

    bool wantsHelp = false;
    bool wantsVersion = false;
    std::optional<std::string> mistake;

private:
    std::span<const char *const> arguments_;
    std::size_t index_ = 0;
    bool optionsEnded_ = false;
};

} // namespace glyphmill::cli
