#include "CompiledPattern.h"

namespace tarnwick::rex {

std::string PcreMessage(int code) {
  PCRE2_UCHAR text[256];
  const int length = pcre2_get_error_message(code, text, sizeof text);
  return length < 0 ? "PCRE2 error " + std::to_string(code) : std::string(reinterpret_cast<char*>(text));
}

std::shared_ptr<CompiledPattern> CompiledPattern::Compile(std::string_view pattern, std::uint32_t options,
                                                          std::string& error) {
  int code = 0;
  PCRE2_SIZE offset = 0;
  pcre2_code* compiled =
      pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()), pattern.size(), options, &code, &offset, nullptr);
  if (compiled == nullptr) {
    error = PcreMessage(code) + " at offset " + std::to_string(offset);
    return nullptr;
  }
  return std::make_shared<CompiledPattern>(compiled);
}

CompiledPattern::CompiledPattern(pcre2_code* code) : code_(code) {
  pcre2_pattern_info(code_, PCRE2_INFO_CAPTURECOUNT, &groups_);
}

std::size_t CompiledPattern::MemoryBytes() const {
  std::size_t size = 0;
  std::size_t machineCode = 0;
  pcre2_pattern_info(code_, PCRE2_INFO_SIZE, &size);
  if (pcre2_pattern_info(code_, PCRE2_INFO_JITSIZE, &machineCode) != 0) machineCode = 0;
  return size + machineCode;
}

CompiledPattern::~CompiledPattern() { pcre2_code_free(code_); }

void CompiledPattern::CompileToMachineCode() {
  if (machineCodeTried_) return;
  machineCodeTried_ = true;
  pcre2_jit_compile(code_, PCRE2_JIT_COMPLETE);
}

}  // namespace tarnwick::rex
