#include <PluginKit/Import.h>

#include <exception>
#include <new>

namespace PluginKit {

int runImport(const std::function<void(const ForeignObjectEnv_t& env, StreamWriter& writer)>& import) {
    try {
        ForeignObjectEnv_t env;
        if (!foreignobject_env_deserialize(env)) {
            return ImportResult_WrongVersion;
        }
        StreamWriter writer(env);
        try {
            import(env, writer);
            writer.end();
            return ImportResult_Done;
        } catch (const std::bad_alloc&) {
            writer.error("not enough memory");
        } catch (const std::exception& e) {
            writer.error(e.what());
        } catch (...) {
            writer.error("an exception without a text");
        }
    } catch (const std::exception&) {
        // Not even the reason could be written.
    }
    return ImportResult_Failed;
}

} // namespace PluginKit
