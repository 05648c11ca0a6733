// How alike two pictures are.
#pragma once

#include <cmath>

/// Pearson's coefficient of the pairs that were added.
class ClPearson {
 public:
  void Add(double a, double b) {
    m_dN += 1;
    m_dA += a;
    m_dB += b;
    m_dAA += a * a;
    m_dBB += b * b;
    m_dAB += a * b;
  }
  double Pairs() const { return m_dN; }
  double Coefficient() const {
    return (m_dN * m_dAB - m_dA * m_dB) /
           std::sqrt((m_dN * m_dAA - m_dA * m_dA) * (m_dN * m_dBB - m_dB * m_dB));
  }

 private:
  double m_dN = 0, m_dA = 0, m_dB = 0, m_dAA = 0, m_dBB = 0, m_dAB = 0;
};
