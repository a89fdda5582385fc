// Autostart entries as files hold them: the group "Desktop Entry" with its name and command line, and the quoting of
// command lines, which is neither the shell's nor the file's own but both in turn. Private to this folder. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct DesktopEntry
{
    std::string mName;
    std::vector<std::string> mCommand; ///< the program, then its arguments

    /// The entry in a file's bytes; absent when there is none that would start something.
    [[nodiscard]] static std::optional<DesktopEntry> Read( std::string_view inBytes );
    /// The bytes of a file. A NUL, or a line break in the command, can't be written: absent then.
    [[nodiscard]] std::optional<std::string> Write() const;

    /// A command line from its words, each quoted where it has to be; and back, without field codes as "%U". Absent when
    /// it isn't well formed or has no words.
    [[nodiscard]] static std::string QuotedCommand( const std::vector<std::string>& inWords );
    [[nodiscard]] static std::optional<std::vector<std::string>> WordsOfCommand( std::string_view inCommand );
};
