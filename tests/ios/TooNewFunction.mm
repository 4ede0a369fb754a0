// A function of libc++ that came with a later iOS than 16.0, as a newer SDK's headers would declare it.

namespace std {
inline namespace __1 {
namespace pmr {
void* get_default_resource();
}
} // namespace __1
} // namespace std

extern "C" __attribute__((used)) void* resource() { return std::pmr::get_default_resource(); }
