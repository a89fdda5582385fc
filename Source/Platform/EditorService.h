// The one editor of a data folder, as other processes of this user reach it: a verb of the program is handed to the
// editor that has the folder, and a second start hands its files to the first. Main thread.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class XEditorService
{
public:
    /// A verb with its arguments, as the program would run it.
    struct Request
    {
        std::vector<std::string> mArguments;
        std::filesystem::path mWorkingFolder; ///< what relative paths among the arguments begin at
        std::string mStandardInput;           ///< whole, when an argument is "-"
        bool mOutputIsTerminal = false, mColours = false;
    };
    struct Reply
    {
        int mStatus = 0;
        std::string mOutput, mErrors;
    };
    using Handler = std::function<Reply( const Request& inRequest )>;

    enum class Claim {
        kOwned, ///< this process is the folder's editor for the others now
        kTaken, ///< another one is
        kAlone, ///< nobody can be reached: there is no bus
    };

    virtual ~XEditorService() = default;

    /// Offers this process as the folder's editor. The handler is called on the main thread.
    [[nodiscard]] virtual Claim ClaimFolder( const std::filesystem::path& inFolder, Handler inHandler ) = 0;
    virtual void ReleaseFolder() = 0;
    /// Has the folder's editor run a verb, and waits for the reply; absent when there is no editor that answers.
    [[nodiscard]] virtual std::optional<Reply> Ask(
        const std::filesystem::path& inFolder, const Request& inRequest ) = 0;

    /// Alone.
    [[nodiscard]] static XEditorService& Absent();
};
