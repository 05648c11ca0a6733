// Objects found by a plain fill: the slow twin of the labeller.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

/// A label for each pixel, row by row: 0 where there is no object, else the number of the object, in the
/// order of their first pixels. Neighbours are left, right, above and below.
template <typename TIsObject>
std::vector<int32_t> PlainLabels(int nWidth, int nHeight, const TIsObject& fnIsObject, int& rnLabels) {
  std::vector<int32_t> aLabels(static_cast<size_t>(nWidth * nHeight), 0);
  const auto At = [&](int x, int y) -> int32_t& { return aLabels[static_cast<size_t>(y * nWidth + x)]; };
  rnLabels = 0;
  for (int n = 0; n < nWidth * nHeight; ++n) {
    std::vector<std::pair<int, int>> aOpen = {{n % nWidth, n / nWidth}};
    for (bool bNew = true; !aOpen.empty();) {
      const auto [x, y] = aOpen.back();
      aOpen.pop_back();
      if (x < 0 || y < 0 || x >= nWidth || y >= nHeight || At(x, y) != 0 || !fnIsObject(x, y)) continue;
      rnLabels += std::exchange(bNew, false) ? 1 : 0;
      At(x, y) = rnLabels;
      aOpen.insert(aOpen.end(), {{x - 1, y}, {x + 1, y}, {x, y - 1}, {x, y + 1}});
    }
  }
  return aLabels;
}
