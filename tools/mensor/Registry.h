// Registry.h: asks the library's registry what it does with texts.
//
// The registry is in libmensor, which this program does not link. Only the command "audit" and the option
// --library ask the registry. They load the module registry.so, which links libmensor.
#ifndef MENSOR_TOOL_REGISTRY_H
#define MENSOR_TOOL_REGISTRY_H

#include <optional>
#include <string>
#include <vector>

#include <mensor_exact/DefinitionFile.h>
#include <mensor_exact/Definitions.h>
#include <mensor_exact/Diagnosis.h>
#include <mensor_exact/Meaning.h>
#include <mensor_exact/Reading.h>

/// The answers of the library's own reader and of the checked reader to one text.
struct CLibraryAnswer {
    std::optional<std::string> Unit;  ///< the unit as the library writes it; none if it is refused
    std::optional<mensor::exact::CMeaning> Meaning;  ///< what the unit means; none if there is none
    std::string Refusal;  ///< the library's message if it refuses the text
    std::optional<mensor::exact::CDiagnosis>
        Checked;          ///< the refusal of the checked reader, if any
    bool IsSame = false;  ///< both readers give the same unit
};

/// The registry of this process. The module implements it.
class CRegistry {
public:
    /// Registers the units of a pack. Call it before the other functions, because packs do not
    /// collide with each other.
    virtual void addPack(mensor::exact::ePack pack) = 0;

    /// Registers the units of a definition file. Returns the refused lines.
    virtual std::vector<mensor::exact::CLineFinding> addDefinitions(const std::string& text) = 0;

    /// Returns why the checked reader refuses a text, or none.
    virtual std::optional<mensor::exact::CDiagnosis> refusalOf(
        const std::string& text, const mensor::exact::CReadOptions& options) = 0;

    /// Asks both readers.
    virtual CLibraryAnswer ask(const std::string& text,
                               const mensor::exact::CReadOptions& options) = 0;

protected:
    ~CRegistry() = default;
};

/// Returns the registry. Loads the module on the first call.
/// @throws std::runtime_error  the module, or a library that it needs, cannot be loaded.
CRegistry& registry();

/// The function of the module that returns its only object.
using GetRegistry = CRegistry*();
constexpr const char* GetRegistryName = "mensorToolRegistry";

#endif  // MENSOR_TOOL_REGISTRY_H
