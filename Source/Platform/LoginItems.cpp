#include "Platform/LoginItems.h"

namespace
{
class AbsentLoginItems final : public XLoginItems
{
public:
    [[nodiscard]] std::vector<XLoginItem> GetLoginItems() const override { return {}; }
    bool AddLoginItem( TextView, const std::filesystem::path& ) override { return false; }
    bool DeleteLoginItem( const XLoginItem& ) override { return false; }
    void SetObserver( std::function<void()> ) override {}
};
} // namespace

XLoginItems& XLoginItems::Absent()
{
    static AbsentLoginItems gAbsent;
    return gAbsent;
}
