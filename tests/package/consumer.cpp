#include <vek/vek.h>

#include <iostream>

int main() {
  // Reaches the catalogue, the conversions and the version through the umbrella header.
  const std::string text = vek::MensagemErro(vek::vbObjectError + 512 + 2);
  std::cout << "vek " << vek::kVersion << ": " << text << "\n";
  return text == "Registro nao encontrado" && vek::CLng(vek::Variant(2.5)) == 2 ? 0 : 1;
}
