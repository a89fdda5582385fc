#include "Platform/FileFacts.h"

#include <atomic>

namespace
{
std::atomic<const XFileFacts*> gFacts = nullptr;
}

bool XFileFacts::TrashFile( const std::filesystem::path& ) const
{
    return false;
}

std::optional<Text> XFileFacts::GetFileKind( const std::filesystem::path& ) const
{
    return {};
}

std::optional<Text> XFileFacts::GetDisplayName( const std::filesystem::path& ) const
{
    return {};
}

std::optional<Text> XFileFacts::GetBundleName( const std::filesystem::path& ) const
{
    return {};
}

std::optional<Text> XFileFacts::GetType( const std::filesystem::path& ) const
{
    return {};
}

// Without knowledge of types, each is only itself.
bool XFileFacts::TypeConformsTo( TextView inType, TextView inOther ) const
{
    return inType == inOther;
}

const XFileFacts& XFileFacts::Current()
{
    static const XFileFacts gAbsent;
    const XFileFacts* facts = gFacts.load();
    return facts ? *facts : gAbsent;
}

XFileFacts::Substitute::Substitute( const XFileFacts& inFacts ) : mPrevious( gFacts.exchange( &inFacts ) ) {}

XFileFacts::Substitute::~Substitute()
{
    gFacts.store( mPrevious );
}
