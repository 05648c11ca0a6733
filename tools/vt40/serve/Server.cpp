// The listener, and the loop with its clock.
#include "Server.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cstdio>

#include "Interruption.h"
#include "Network.h"
#include "Service.h"

namespace Serve {
namespace {

namespace asio = boost::asio;
using boost::system::error_code;
using tcp = asio::ip::tcp;

constexpr std::chrono::milliseconds coTick(100);
/// In which the clients' sockets are closed in good form.
constexpr std::chrono::milliseconds coFarewell(100);

}  // namespace

struct ClServer::StNetwork {
  // Counted by sessions, the last of which end with the context.
  unsigned int nConnections = 0;
  asio::io_context oContext{1};
  tcp::acceptor oAcceptor{oContext};
  asio::steady_timer oTimer{oContext};
  ClService* pService = nullptr;
  bool bAcceptLater = false;

  void Accept() {
    oAcceptor.async_accept([this](const error_code& oError, tcp::socket oSocket) {
      if (oError == asio::error::operation_aborted) return;
      if (!oError) Greet(std::move(oSocket));
      // Without a file descriptor for the next one it is tried again with the next tick.
      bAcceptLater = oError == asio::error::no_descriptors;
      if (!bAcceptLater) Accept();
    });
  }

  void Greet(tcp::socket oSocket) {
    if (nConnections >= cnMostConnections) return;
    error_code oIgnored;
    oSocket.set_option(tcp::no_delay(true), oIgnored);
    ++nConnections;
    const Seat pSeat(this, [](StNetwork* p) { --p->nConnections; });
    StartHttpSession(std::move(oSocket), *pService, pSeat);
  }

  void Tick() {
    oTimer.expires_after(coTick);
    oTimer.async_wait([this](const error_code& oError) {
      if (oError) return;
      if (Interruption::Pending()) return End();
      pService->Tick();
      if (std::exchange(bAcceptLater, false)) Accept();
      Tick();
    });
  }

  void End() {
    error_code oIgnored;
    oAcceptor.close(oIgnored);
    pService->CloseSockets();
    oTimer.expires_after(coFarewell);
    oTimer.async_wait([this](const error_code&) { oContext.stop(); });
  }
};

ClServer::ClServer(const std::string& sHost, unsigned short nPort)
    : m_pNetwork(std::make_unique<StNetwork>()) {
  error_code oError;
  const auto oAddress = asio::ip::make_address(sHost == "localhost" ? "127.0.0.1" : sHost, oError);
  if (oError) throw ClToolError(eExitUsage, "--host " + sHost + " is no address of this machine");
  const tcp::endpoint oEndpoint(oAddress, nPort);
  tcp::acceptor& oAcceptor = m_pNetwork->oAcceptor;
  try {
    oAcceptor.open(oEndpoint.protocol());
    oAcceptor.set_option(tcp::acceptor::reuse_address(true));
    oAcceptor.bind(oEndpoint);
    oAcceptor.listen();
  } catch (const boost::system::system_error& oFailure) {
    throw ClToolError(eExitFailure, Authority(sHost, nPort) + " cannot be listened on: " +
                                        oFailure.code().message() + "; see --port");
  }
}

ClServer::~ClServer() = default;

unsigned short ClServer::Port() const {
  return m_pNetwork->oAcceptor.local_endpoint().port();
}

bool ClServer::Run(ClService& oService) {
  m_pNetwork->pService = &oService;
  m_pNetwork->Accept();
  m_pNetwork->Tick();
  for (bool bEnded = false; !bEnded;) {
    try {
      m_pNetwork->oContext.run();
      bEnded = true;
    } catch (const std::exception& oFailure) {
      // What one connection lacked, memory most likely, is no reason to leave the others.
      std::fprintf(stderr, "vt40: %s\n", oFailure.what());
    }
  }
  return oService.End();
}

void ClServer::Wake() {
  asio::post(m_pNetwork->oContext, [pNetwork = m_pNetwork.get()] {
    if (pNetwork->pService != nullptr) pNetwork->pService->Drain();
  });
}

}  // namespace Serve
