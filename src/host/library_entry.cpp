// What belongs to libtamerisk.so alone: the module's start-up when the
// library is loaded and its shut-down when it is unloaded.
namespace {

struct ModuleLifetime {
    ModuleLifetime() = default;
    ~ModuleLifetime() = default;
};

const ModuleLifetime module;

} // namespace
