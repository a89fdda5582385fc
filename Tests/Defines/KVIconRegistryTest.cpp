#include "Defines/KVIconRegistry.h"

#include "Tests/Support/LogCapture.h"

#include <gtest/gtest.h>
#include <set>

namespace
{
/// The table in use, as after start-up, for as long as a test runs.
struct InstalledRegistry
{
    InstalledRegistry() { KVIconRegistryStart(); }
    ~InstalledRegistry() { XInternalIconNames::Install( nullptr ); }
};
} // namespace

TEST( KVIconRegistry, EveryIndexThatOthersUseHasAnIconThatSavesAndLoads )
{
    const InstalledRegistry registry;
    for ( const int index : { 3, 24, 25, 29, 30, 38, 62, 120, 126, 127, 130, 134 } )
    {
        const XIcon icon = KVIconRegistryIconWithIndex( index );
        ASSERT_TRUE( icon.Defined() ) << index;
        EXPECT_TRUE( icon.GetImage().Defined() ) << index;
        EXPECT_EQ( XIcon::FromSavedData( icon.GetSavedData() ), icon ) << index;
    }
    for ( const int index : { -1, 0, 9999, 65536 + 126 } ) // each asserts
        EXPECT_FALSE( KVIconRegistryIconWithIndex( index ).Defined() ) << index;
}

TEST( KVIconRegistry, NamesAreUniqueAndWithoutTheHyphenThatEndsThem )
{
    std::set<TextView> names;
    for ( const auto& row : KVIconRegistryRows() )
    {
        EXPECT_TRUE( names.insert( row.mName ).second ) << UTF8FromText( row.mName );
        EXPECT_EQ( row.mName.find( u'-' ), TextView::npos );
        EXPECT_TRUE( KVIconRegistryIsKnown( row.mName ) );
    }
}

TEST( KVIconRegistry, AnUnknownNameHasNoImageAndSavesBackUnchanged )
{
    const InstalledRegistry registry;
    constexpr struct
    {
        TextView mSaved;
        bool mKnown;
    } kCases[] = {
        { u"KVEP-Folder", true },
        { u"KVEP-PlainText", true },
        { u"KVEP-Action", true },
        { u"KVEP-Action-Pause", true },
        { u"KVEP-Action-", false },
        { u"KVEP-Folder-Red", false },
        { u"KVEP-folder", false },
        { u"KVEP-NoSuchIcon", false },
        { u"KVEP-", false },
    };
    for ( const auto& [saved, known] : kCases )
    {
        LogCapture lines;
        const XIcon icon = XIcon::FromSavedData( __SafeCFPropertyList::String( saved ) );
        EXPECT_EQ( lines.Take(),
            known ? std::vector<std::string>()
                  : std::vector<std::string>{ "XIcon::FromSavedData failed to find internal icon “" +
                        icon.GetInternalName().GetUTF8() + "” from “" + UTF8FromText( saved ) + "”" } );
        EXPECT_TRUE( icon.Defined() ) << UTF8FromText( saved );
        EXPECT_EQ( icon.GetImage().Defined(), known ) << UTF8FromText( saved );
        EXPECT_EQ( icon.GetSavedData(), __SafeCFPropertyList::String( saved ) );
    }
}

TEST( KVIconRegistry, ANameFallsBackToANumber )
{
    EXPECT_EQ( XIcon( u"Clipboard", KVIconRegistry::kAction ), XIcon::InternalIcon( u"Clipboard" ) );
    EXPECT_EQ( XIcon( u"NoSuchIcon", KVIconRegistry::kAction ), XIcon( KVIconRegistry::kAction ) );
    EXPECT_EQ( XIcon( u"", KVIconRegistry::kAction ), XIcon( KVIconRegistry::kAction ) );
    EXPECT_EQ( KVIconRegistryIconForActionType( u"Pause" ), XIcon::InternalIcon( u"Action-Pause" ) );
}

TEST( KVIconRegistry, AnImageKnowsWhereItComesFromAndNothingGivesNone )
{
    EXPECT_EQ( KVIconRegistryImageWithApplicationBundleID( u"com.example.app" ).mSource, XImage::Source::kApplication );
    EXPECT_EQ( ImageWithPreferencePane( u"/Pane" ).mSource, XImage::Source::kPreferencePane );
    EXPECT_EQ( ImageWithHFSIconName( u"Alias" ).mSource, XImage::Source::kHFSIcon );
    EXPECT_EQ( ImageWithExtension( u"txt" ).mSource, XImage::Source::kExtension );
    EXPECT_TRUE( KVIconRegistryGearImage().Defined() );
    EXPECT_TRUE( KVIconRegistryImageWithName( u"Action-Pause" ).Defined() );
    EXPECT_FALSE( KVIconRegistryImageWithName( u"NoSuchIcon" ).Defined() );
    EXPECT_FALSE( ImageWithExtension( u"" ).Defined() );
}
