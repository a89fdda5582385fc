#include "Macros/MSearchTexts.h"

#include "Macros/MMacroSerializedObject.h"
#include "Macros/XTextHash.h"

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

using Dependencies = MSearchTexts::Dependencies;

Dependencies* gCollecting = nullptr;
std::uint32_t gChangeCount = 0; // of all that is asked for: while it stands still, nothing has to be looked at
std::uint32_t gForgottenCount = 0;
std::uint64_t gCollectionCount = 0;

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

const SearchableTexts& MSearchTexts::Get( const MMacroSerializedObject& inObject ) const
{
    if ( not IsValid() )
        Collect( inObject );
    return mTexts;
}

bool MSearchTexts::IsValid() const
{
    if ( not mTexts.Defined() or mForgottenSeen != gForgottenCount )
        return false;
    if ( mChangesSeen == gChangeCount )
        return true;
    mChangesSeen = gChangeCount;
    return not mDependencies or std::ranges::all_of( *mDependencies, []( const Dependency& dependency ) {
        return *dependency.mCount == dependency.mSeen;
    } );
}

void MSearchTexts::Collect( const MMacroSerializedObject& inObject ) const
{
    StringSearchee searchee;
    Dependencies dependencies;
    {
        const CollectingScope scope( dependencies );
        inObject.AddOwnMatchStrings( searchee );
    }
    mTexts = SearchableTexts( searchee );
    mDependencies = dependencies.empty() ? nullptr : std::make_unique<const Dependencies>( std::move( dependencies ) );
    mChangesSeen = gChangeCount;
    mForgottenSeen = gForgottenCount;
    ++gCollectionCount;
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

std::uint64_t MSearchTexts::GetCollectionCount()
{
    return gCollectionCount;
}
