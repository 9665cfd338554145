// A pattern compiled by PCRE2, and JIT-compiled on request where the
// platform has it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "Pcre.h"

namespace tarnwick::rex {

class CompiledPattern {
 public:
  // The compiled pattern, or nullptr with PCRE2's reason in `error`.
  static std::shared_ptr<CompiledPattern> Compile(std::string_view pattern, std::uint32_t options, std::string& error);
  explicit CompiledPattern(pcre2_code* code);
  ~CompiledPattern();
  CompiledPattern(const CompiledPattern&) = delete;
  CompiledPattern& operator=(const CompiledPattern&) = delete;

  // Compiles the pattern to machine code, once: a few times the cost of the
  // first compilation, repaid by every later match. Without JIT (a platform
  // it does not support, or no executable memory) the interpreter goes on
  // running the pattern: slower, with the same answers.
  void CompileToMachineCode();

  const pcre2_code* code() const { return code_; }
  // Bytes of the compiled pattern and of its machine code.
  std::size_t MemoryBytes() const;
  // Capturing groups in the pattern.
  std::uint32_t groups() const { return groups_; }

 private:
  pcre2_code* code_;
  std::uint32_t groups_ = 0;
  bool machineCodeTried_ = false;
};

}  // namespace tarnwick::rex
