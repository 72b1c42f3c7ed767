#include <utils/utilsicons.h>

namespace Utils::Icons {

const Icon OK({{":/utils/images/ok.svg", Theme::IconsRunColor}});
const Icon BROKEN({{":/utils/images/broken.svg", Theme::IconsErrorColor}});
const Icon NEWFILE({{":/utils/images/newfile.svg", Theme::IconsBaseColor}});

} // namespace Utils::Icons
