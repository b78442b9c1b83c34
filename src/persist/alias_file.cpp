#include "persist/alias_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

#include "inventory/address_record.h"
#include "persist/replace_file.h"

namespace addrtool {
namespace {

// Only existence matters, not type or content.
bool isSuseSystem() {
  struct stat status{};
  return stat("/etc/SuSE-release", &status) == 0;
}

}  // namespace

std::string interfaceConfigPath(const std::string& label) {
  return std::string(networkScriptsDir) + "/ifcfg-" + label;
}

int writeAliasContent(std::FILE* /*oldFile*/, std::FILE* newFile, void* context) {
  const auto& alias = *static_cast<const LabelledAddress*>(context);
  const std::string netmask = prefixToNetmask(alias.address);
  std::fprintf(newFile, "DEVICE=\"%s\"\nIPADDR=\"%s\"\nNETMASK=\"%s\"\n", alias.label.c_str(),
               alias.address.address.c_str(), netmask.c_str());
  // SuSE starts only interfaces whose file sets STARTMODE.
  if (isSuseSystem()) std::fputs("STARTMODE='onboot'\n", newFile);
  return 0;
}

void writeAliasFile(LabelledAddress alias) {
  const std::string path = interfaceConfigPath(alias.label);
  if (replaceFile(path.c_str(), writeAliasContent, &alias, 0) != 0) {
    const char* error = std::strerror(errno);
    throw std::runtime_error(path + ": " + error);
  }
}

void removeAliasFile(const std::string& label) {
  unlink(interfaceConfigPath(label).c_str());
}

}  // namespace addrtool
