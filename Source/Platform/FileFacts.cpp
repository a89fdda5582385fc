#include "Platform/FileFacts.h"

namespace
{
class AbsentFileFacts final : public XDesktopFileFacts
{
public:
    bool TrashFile( const std::filesystem::path& ) override { return false; }
    [[nodiscard]] std::optional<Text> GetFileKind( const std::filesystem::path& ) const override { return {}; }
    [[nodiscard]] std::optional<Text> GetDisplayName( const std::filesystem::path& ) const override { return {}; }
    [[nodiscard]] std::optional<Text> GetBundleName( const std::filesystem::path& ) const override { return {}; }
    [[nodiscard]] std::optional<Text> GetType( const std::filesystem::path& ) const override { return {}; }
    [[nodiscard]] bool TypeConformsTo( TextView inType, TextView inOther ) const override { return inType == inOther; }
};
} // namespace

XDesktopFileFacts& XDesktopFileFacts::Absent()
{
    static AbsentFileFacts gAbsent;
    return gAbsent;
}
