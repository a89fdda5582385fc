#include "Macros/MSearchTexts.h"

#include "Macros/MMacroSerializedObject.h"
#include "Macros/XTextHash.h"
#include "Utility/Search/SearchableTexts.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace
{
// How often the object of a UID changed, for those UIDs that a collection ever asked for. The counts keep
// their address for good.
using Changes = std::unordered_map<XText, std::uint32_t, XTextHash>;

Changes& ChangesByUID()
{
    static Changes& gChanges = *new Changes; // never destroyed: objects in static storage may outlive it
    return gChanges;
}

struct Dependency
{
    const std::uint32_t* mCount;
    std::uint32_t mSeen;
};
using Dependencies = std::vector<Dependency>;

Dependencies* gCollecting = nullptr;
std::uint64_t gChangeCount = 0; // of all that is asked for: while it stands still, nothing has to be looked at
std::uint64_t gForgottenCount = 0;

class CollectingScope
{
public:
    explicit CollectingScope( Dependencies& ioDependencies ) : mOuter( gCollecting ) { gCollecting = &ioDependencies; }
    ~CollectingScope() { gCollecting = mOuter; }
    CollectingScope( const CollectingScope& ) = delete;
    CollectingScope& operator=( const CollectingScope& ) = delete;

private:
    Dependencies* mOuter;
};
} // namespace

struct MSearchTexts::Collected
{
    SearchableTexts mTexts;
    Dependencies mDependencies;
    std::uint64_t mChangesSeen = gChangeCount;
    std::uint64_t mForgottenSeen = gForgottenCount;
};

MSearchTexts::MSearchTexts() = default;
MSearchTexts::~MSearchTexts() = default;

const SearchableTexts& MSearchTexts::Get( const MMacroSerializedObject& inObject ) const
{
    if ( mCollected and IsValid( *mCollected ) )
        return mCollected->mTexts;
    mCollected = std::make_unique<Collected>();
    StringSearchee searchee;
    {
        const CollectingScope scope( mCollected->mDependencies );
        inObject.AddOwnMatchStrings( searchee );
    }
    mCollected->mDependencies.shrink_to_fit();
    mCollected->mTexts = SearchableTexts( searchee );
    return mCollected->mTexts;
}

bool MSearchTexts::IsValid( Collected& ioCollected )
{
    if ( ioCollected.mForgottenSeen != gForgottenCount )
        return false;
    if ( ioCollected.mChangesSeen == gChangeCount )
        return true;
    ioCollected.mChangesSeen = gChangeCount;
    return std::ranges::all_of( ioCollected.mDependencies,
        []( const Dependency& dependency ) { return *dependency.mCount == dependency.mSeen; } );
}

void MSearchTexts::Forget()
{
    mCollected.reset();
}

void MSearchTexts::DidLookUp( const XText& inUID )
{
    if ( not gCollecting or inUID.IsNull() )
        return;
    const std::uint32_t& count = ChangesByUID()[inUID];
    const auto isSame = [&count]( const Dependency& dependency ) { return dependency.mCount == &count; };
    if ( std::ranges::none_of( *gCollecting, isSame ) )
        gCollecting->push_back( { &count, count } );
}

void MSearchTexts::DidChange( const XText& inUID )
{
    if ( ChangesByUID().empty() or inUID.IsNull() )
        return;
    const auto found = ChangesByUID().find( inUID );
    if ( found == ChangesByUID().end() )
        return;
    ++found->second;
    ++gChangeCount;
}

void MSearchTexts::ForgetAll()
{
    ++gForgottenCount;
}
