// The file "Editor.log": appending, and shortening it once when it has grown. Used on the log queue
// only. Nothing here fails upward: what can't be written is lost, what can't be read stays.
#pragma once

#include <filesystem>
#include <string_view>

class XLogFile
{
public:
    XLogFile() = default;
    ~XLogFile();
    XLogFile( const XLogFile& ) = delete;
    XLogFile& operator=( const XLogFile& ) = delete;

    /// Appends one entry, with its line feed. The first call opens the file, and shortens it if needed.
    void Append( const std::filesystem::path& inPath, std::string_view inEntry );

    static constexpr std::size_t kRotateAbove = 13000000; ///< bytes
    static constexpr std::size_t kKeep = 7000000;         ///< bytes, less the part of a line at their start

private:
    static void Rotate( const std::filesystem::path& inPath );
    bool Open( const std::filesystem::path& inPath );
    void Close();

    std::filesystem::path mPath;
    int mDescriptor = -1;
    bool mHasRotated = false;
};
