// Any bytes are refused with a reason, or read as a value of bounded size that survives being written.
#include "CFMethods/PropertyListCodec.h"

#include <cstdio>
#include <cstdlib>

namespace
{
void Require( bool inHolds, const char* inWhat )
{
    if ( inHolds )
        return;
    std::fprintf( stderr, "%s\n", inWhat );
    std::abort();
}

struct Size
{
    std::uint64_t mNodes = 0;
    std::size_t mDepth = 0;
};

// What a walk of the value meets, keys included, shared containers each time.
Size SizeOf( const __SafeCFPropertyList& inValue )
{
    Size size;
    std::vector<std::pair<const XPlistNode*, std::size_t>> pending = { { inValue.GetNode(), 1 } };
    while ( not pending.empty() )
    {
        const auto [node, depth] = pending.back();
        pending.pop_back();
        ++size.mNodes;
        if ( node->GetType() < XPlistType::kArray )
            continue;
        size.mDepth = std::max( size.mDepth, depth );
        const __SafeCFPropertyList container( node );
        if ( const XPlistArray* const array = container.AsArray() )
        {
            for ( const XPlistNode* const element : array->Nodes() )
                pending.emplace_back( element, depth + 1 );
            continue;
        }
        for ( const auto& entry : container.AsDictionary()->GetEntries() )
        {
            ++size.mNodes;
            pending.emplace_back( entry.mValue, depth + 1 );
        }
    }
    return size;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput( const std::uint8_t* inBytes, std::size_t inSize )
{
    const XPlistReadResult read = ReadBinaryPropertyList( { inBytes, inSize } );
    Require( read.mFault.has_value() == not read.mValue, "fault and value, or neither" );
    if ( read.mFault )
    {
        Require( not read.mFault->mMessage.empty(), "a refusal without a reason" );
        Require( read.mFault->mOffset <= inSize, "a refusal at a byte behind the end" );
        return 0;
    }
    const Size size = SizeOf( read.mValue );
    Require( size.mDepth <= XPlistLimits().mMaxDepth, "deeper than the limit" );
    // A reference takes a byte at least.
    Require( size.mNodes <= 16 * inSize + 1000, "expands beyond the bound" );
    Require( read.mNotes.size() <= 100, "more than 100 notes" );

    const XBytes written = WriteBinaryPropertyList( read.mValue );
    const XPlistReadResult again = ReadBinaryPropertyList( written.Span() );
    Require( not again.mFault, "what was written is refused" );
    Require( again.mNotes.empty(), "what was written has notes" );
    Require( again.mValue == read.mValue, "what was written differs" );
    Require( WriteBinaryPropertyList( again.mValue ).View() == written.View(), "written differently" );
    return 0;
}
