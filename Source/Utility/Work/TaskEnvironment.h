// The environment that an external command gets: the process's own without what must not leak into
// it, the user's variables as "KVVAR_...", and the parameters of the execution as
// "KVPARAM_...". Its size has a limit, which long variables give way to.
#pragma once

#include "CFMethods/Text.h"

#include <optional>
#include <string>
#include <vector>

/// A name and its text.
struct XTaskVariable
{
    Text mName;
    Text mText;
};

/// Where the variables of the user come from; the store of variables fills it in.
class XTaskVariables
{
public:
    virtual ~XTaskVariables() = default;
    /// All variables that an execution sees; the instance may be absent. On the thread that launches.
    [[nodiscard]] virtual std::vector<XTaskVariable> CopyVariables( const std::optional<Text>& inInstance ) const = 0;
};

struct XTaskEnvironment
{
    /// "KVVAR_" and "KVPARAM_" of the process are dropped as well as the loader's variables.
    bool mDropOwnVariables = true;
    std::vector<XTaskVariable> mVariables, mParameters;
    std::optional<Text> mInstance; ///< "KVINSTANCE"

    /// The entries "NAME=value", made from the process's. Those of the process that change what the loader or Perl runs
    /// are left out; one that the user has made, as with "ENV_LD_PRELOAD", stays, with a log line. Together the entries stay below kMaxBytes:
    /// the largest variables are replaced by a short text, then left out, with log lines.
    [[nodiscard]] std::vector<std::string> Make( const std::vector<std::string>& inProcessEnvironment ) const;

    /// The environment of this process.
    [[nodiscard]] static std::vector<std::string> OfProcess();

    /// Entries with their final NUL stay below this; no string of it is too long for the system then.
    static constexpr std::size_t kMaxBytes = 0x19001;
};
