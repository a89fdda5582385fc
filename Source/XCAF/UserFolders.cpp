#include "XCAF/UserFolders.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace
{
std::filesystem::path FromEnvironment( const char* inVariable )
{
    const char* value = std::getenv( inVariable );
    std::filesystem::path path( value ? value : "" );
    return path.is_absolute() ? path : std::filesystem::path();
}

// Never a folder that all users share: a stranger could have made ours there before us.
std::filesystem::path HomeFolder()
{
    if ( auto home = FromEnvironment( "HOME" ); not home.empty() )
        return home;
    std::array<char, 16384> buffer;
    passwd entry{};
    passwd* user = nullptr;
    ::getpwuid_r( ::getuid(), &entry, buffer.data(), buffer.size(), &user );
    return user and user->pw_dir ? user->pw_dir : "/";
}
} // namespace

std::filesystem::path kvr_userFolder( const char* inVariable, const char* inBelowHome )
{
    auto folder = FromEnvironment( inVariable );
    return folder.empty() ? HomeFolder() / inBelowHome : folder;
}
