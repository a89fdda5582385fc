// The actions that get and set what the system knows of a file beside its contents.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"
#include "Actions/VariableTransformationAction.h"

enum class FileAttribute {
    kFileType,
    kFileSize,
    kCreationDate,
    kModificationDate,
    kOwnerName,
    kOwnerID,
    kGroupName,
    kGroupID,
    kPosixPermissions,
    kExtensionHidden,
    kHFSCreatorCode,
    kHFSTypeCode,
    kTags,
    kTagsAdd,
    kTagsToggle,
    kTagsRemove,
    kParent,
    kName,
    kBaseName,
    kExtension,
    kDisplayName,
    kContentType,
    kContentKind,
    kInvisible,
    kAddedDate,
    kDownloadedDate,
    kLastUsedDate,
    kWhereFrom,
    kComment,
};
inline constexpr TextView kFileAttributeNames[] = { u"FileType", u"FileSize", u"CreationDate", u"ModificationDate",
    u"OwnerName", u"OwnerID", u"GroupName", u"GroupID", u"PosixPermissions", u"ExtensionHidden", u"HFSCreatorCode",
    u"HFSTypeCode", u"Tags", u"TagsAdd", u"TagsToggle", u"TagsRemove", u"Parent", u"Name", u"BaseName", u"Extension",
    u"DisplayName", u"ContentType", u"ContentKind", u"Invisible", u"AddedDate", u"DownloadedDate", u"LastUsedDate",
    u"WhereFrom", u"Comment" };
static_assert( std::size( kFileAttributeNames ) == std::size_t( FileAttribute::kComment ) + 1 );
constexpr auto NamesOf( FileAttribute )
{
    return std::span( kFileAttributeNames );
}

class AGetFileAttribute final : public HActionOf<AGetFileAttribute, HActionType::kGetFileAttribute>,
                                public VariableTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

    [[nodiscard]] XText GetVariable() const override { return mVariable; }
    /// The path, which is what the result is made of.
    void SetVariableText( const XText& inText ) override { mPath = inText; }
    [[nodiscard]] XText GetVariableText() const override { return mPath; }
    /// Null: only the engine looks at files.
    [[nodiscard]] XText GetTransformationResult( CalculateError*, float*, bool ) const override { return {}; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    FileAttribute mAttribute = FileAttribute::kFileType;
    XText mVariable = SharedText<u"VarName">();
    XText mPath = SharedText<u"">();
};

class ASetFileAttribute final : public HActionOf<ASetFileAttribute, HActionType::kSetFileAttribute>,
                                public VariableTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

    [[nodiscard]] XText GetVariable() const override { return {}; }
    void SetVariableText( const XText& inText ) override { mText = inText; }
    [[nodiscard]] XText GetVariableText() const override { return mText; }
    /// Null for what changes the tags that the file has; otherwise the text as it stands.
    [[nodiscard]] XText GetTransformationResult( CalculateError*, float*, bool ) const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    [[nodiscard]] bool ChangesTags() const;

    FileAttribute mAttribute = FileAttribute::kFileType;
    XText mText = SharedText<u"">();
    XText mPath = SharedText<u"">();
};
