// Where output goes: to somebody's terminal, with columns and colours, or to a file or another program, plain. All
// output of the program goes through here, line by line, so that nothing that happened is still in a buffer when the
// next thing does.
#pragma once

#include "simulator/cli/options.h"

#include <cstdio>
#include <string>

namespace sim::cli {

enum class Style { kPlain, kBold, kDim, kRed, kGreen, kYellow, kCyan };

class Screen {
public:
    /// What stdout or stderr is, looking at NO_COLOR and TERM too.
    static Screen Of(std::FILE *file);

    /// `canRewind`: whether a line that is not ended can be written anew.
    Screen(std::FILE *file, bool isTerminal, bool hasColours, size_t width, size_t height = 24, bool canRewind = false)
        : file_(file), isTerminal_(isTerminal), hasColours_(hasColours), canRewind_(canRewind), width_(width),
          height_(height) {}

    /// The same without rewinding: for lines between which others write.
    Screen ThatOnlyScrolls() const { return {file_, isTerminal_, hasColours_, width_, height_}; }

    bool IsTerminal() const { return isTerminal_; }
    /// Columns of the terminal.
    size_t Width() const { return width_; }
    /// Lines of the terminal.
    size_t Height() const { return height_; }
    bool CanRewind() const { return canRewind_; }
    /// What takes back a line that is not ended, or writes over what was typed in it; "" where there is no terminal.
    std::string Rewind() const { return canRewind_ ? "\r\x1b[K" : isTerminal_ ? "\r" : ""; }

    /// The text in that style, or just the text where there are no colours.
    std::string Styled(const std::string &text, Style style) const;
    /// The text, cut to what is left of a terminal's line behind so many columns. Whole where there is no terminal.
    std::string FittedBehind(size_t columns, const std::string &text) const;

    /// Writes the text and ends the line.
    void Line(const std::string &text = "") const;
    /// Writes all lines at once.
    void Write(const std::string &text) const;

    /// False when something could not be written, on a full disk for example.
    bool IsWell() const;

private:
    std::FILE *file_;
    bool isTerminal_;
    bool hasColours_;
    bool canRewind_;
    size_t width_;
    size_t height_;
};

/// The two places that the program writes to. Somebody at a terminal sees both in one; for programs, standard output
/// has the results and nothing else.
struct Output {
    Screen results;
    Screen notes;
    Format format;

    /// As asked for, or in columns on a terminal and separated by tabs elsewhere.
    static Output For(std::optional<Format> format);
};

} // namespace sim::cli
