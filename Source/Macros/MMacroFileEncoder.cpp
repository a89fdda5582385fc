#include "Macros/MMacroFileEncoder.h"

#include "CFMethods/BinaryPropertyListPieces.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <utility>

namespace
{
#ifdef NDEBUG
constexpr bool kCheckEverySave = false;
#else
constexpr bool kCheckEverySave = true;
#endif

// So many values that no macro holds any more may stand in the encoder's table beside as many as the file has.
constexpr std::size_t kLeavesToSpare = 100000;

// Where going around the domain goes on: at an entry, and at a macro of it, by their serial numbers.
struct Place
{
    std::uint32_t mEntry = 0, mMacro = 0;
};

struct State
{
    XPlistPieceEncoder mEncoder;
    Place mChecked, mPrepared;
};

// Never destroyed: a domain in static storage forgets at its end.
State& TheState()
{
    static State& gState = *new State;
    return gState;
}

XPlistPiecePtr Encode( const MMacroSerializedObject& inObject )
{
    XPlistPieceEncoder& encoder = TheState().mEncoder;
    const MMacroGroup* const group = inObject.GetAsMacroGroup();
    if ( not group )
        return encoder.Encode( inObject.CopyToPropertyList() );
    const CFContainer<XPlistArray> hole = XMutableArray().Seal();
    return encoder.Encode( group->CopyToPropertyListAround( hole ), hole.GetCFRef() );
}

bool IsEncoded( const MMacroSerializedObject& inObject )
{
    return TheState().mEncoder.IsValid( inObject.GetPiece() );
}

// False when the kept form isn't that of the object; it is then.
bool Check( MMacroSerializedObject& ioObject )
{
    XPlistPiecePtr piece = Encode( ioObject );
    if ( piece->Equals( *ioObject.GetPiece() ) )
        return true;
    ioObject.SetPiece( std::move( piece ) );
    XAssertText( false, "piece->Equals( *ioObject.GetPiece() )" );
    return false;
}

const XPlistPiecePtr& PieceOf( MMacroSerializedObject& ioObject )
{
    if ( not IsEncoded( ioObject ) )
        ioObject.SetPiece( Encode( ioObject ) );
    else if constexpr ( kCheckEverySave )
        Check( ioObject );
    return ioObject.GetPiece();
}

enum class Purpose { kSave, kSnapshot };

void AddRoot( XPlistPieceFile& ioFile, MMacroDomain& ioDomain, Purpose inPurpose )
{
    const CFContainer<XPlistArray> hole = XMutableArray().Seal();
    const __SafeCFPropertyList root = inPurpose == Purpose::kSave ? ioDomain.GetPropertyListAround( hole )
                                                                  : ioDomain.GetSnapshotPropertyListAround( hole );
    ioFile.Add( TheState().mEncoder.Encode( root, hole.GetCFRef() ) );
}

// The block is given objects from the place on, each entry before its macros, until it answers false; the place is
// then that of the object that it was given last. True at the end.
template<class Block>
bool GoOn( const MMacroDomain& inDomain, Place& ioPlace, const Block& inBlock )
{
    std::vector<MMacroSerializedObject*> entries;
    inDomain.GetUnorderedEveryMacroGroupEntry( entries );
    std::erase_if( entries, [&]( const auto* entry ) { return entry->GetSerialNumber() < ioPlace.mEntry; } );
    std::ranges::sort( entries, {}, &MMacroSerializedObject::GetSerialNumber );
    for ( MMacroSerializedObject* const entry : entries )
    {
        if ( entry->GetSerialNumber() != ioPlace.mEntry )
            ioPlace = { entry->GetSerialNumber(), 0 };
        if ( ioPlace.mMacro == 0 and not inBlock( *entry ) )
            return false;
        const MMacroGroup* const group = entry->GetAsMacroGroup();
        bool goesOn = true;
        if ( group )
            group->DoForEveryMacro( [&]( MMacro& macro ) {
                if ( not goesOn or macro.GetSerialNumber() < ioPlace.mMacro )
                    return;
                ioPlace.mMacro = macro.GetSerialNumber();
                goesOn = inBlock( macro );
            } );
        if ( not goesOn )
            return false;
    }
    return true;
}
MMacroFileDataPtr EncodeFor( MMacroDomain& ioDomain, Purpose inPurpose )
{
    const auto file = std::make_shared<XPlistPieceFile>( TheState().mEncoder );
    AddRoot( *file, ioDomain, inPurpose );
    for ( MMacroSmartGroup* const smartGroup : ioDomain.GetSmartGroupsInFileOrder() )
        file->Add( PieceOf( *smartGroup ) );
    for ( MMacroGroup* const group : ioDomain.GetMacroGroupsInFileOrder() )
    {
        file->Add( PieceOf( *group ) );
        group->DoForEveryMacro( [&file]( MMacro& macro ) { file->Add( PieceOf( macro ) ); } );
        file->EndHole();
    }
    file->EndHole();
    const std::size_t size = file->Measure();
    if ( TheState().mEncoder.GetLeafCount() > 2 * file->GetLeafCount() + kLeavesToSpare )
        MMacroFileEncoder::Forget();
    return std::make_shared<const MMacroFileData>( size, [file] { return file->Assemble(); } );
}

} // namespace

MMacroFileDataPtr MMacroFileEncoder::EncodeMacroDomain( MMacroDomain& ioDomain )
{
    return EncodeFor( ioDomain, Purpose::kSave );
}

MMacroFileDataPtr MMacroFileEncoder::EncodeSnapshot( MMacroDomain& ioDomain )
{
    return EncodeFor( ioDomain, Purpose::kSnapshot );
}

MMacroFileDataPtr MMacroFileEncoder::EncodeMacroDomainAnew( MMacroDomain& ioDomain )
{
    Forget();
    return EncodeMacroDomain( ioDomain );
}

bool MMacroFileEncoder::EncodeSome( const MMacroDomain& inDomain, std::size_t inMostObjects )
{
    const bool atEnd = GoOn( inDomain, TheState().mPrepared, [&inMostObjects]( MMacroSerializedObject& object ) {
        if ( IsEncoded( object ) )
            return true;
        if ( inMostObjects == 0 )
            return false;
        --inMostObjects;
        object.SetPiece( Encode( object ) );
        return true;
    } );
    if ( atEnd )
        TheState().mPrepared = {};
    return atEnd;
}

bool MMacroFileEncoder::CheckSome( const MMacroDomain& inDomain, std::size_t inMostObjects )
{
    bool good = true;
    const bool atEnd = GoOn( inDomain, TheState().mChecked, [&good, &inMostObjects]( MMacroSerializedObject& object ) {
        if ( inMostObjects == 0 )
            return false;
        --inMostObjects;
        if ( IsEncoded( object ) )
            good = Check( object ) and good;
        return true;
    } );
    if ( atEnd )
        TheState().mChecked = {};
    return good;
}

void MMacroFileEncoder::Forget()
{
    TheState().mEncoder.StartAnew();
    TheState().mChecked = TheState().mPrepared = {};
}

bool MMacroFileEncoder::HasAnything()
{
    return TheState().mEncoder.GetLeafCount() > 0;
}
