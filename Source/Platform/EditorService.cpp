#include "Platform/EditorService.h"

namespace
{
class AbsentEditorService final : public XEditorService
{
public:
    [[nodiscard]] Claim ClaimFolder( const std::filesystem::path&, Handler ) override { return Claim::kAlone; }
    void ReleaseFolder() override {}
    [[nodiscard]] std::optional<Reply> Ask( const std::filesystem::path&, const Request& ) override { return {}; }
};
} // namespace

XEditorService& XEditorService::Absent()
{
    static AbsentEditorService gAbsent;
    return gAbsent;
}
