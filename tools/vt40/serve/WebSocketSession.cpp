// Events and frames for one client.
#include <array>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/websocket/stream.hpp>

#include "Network.h"
#include "Service.h"

namespace Serve {
namespace {

namespace beast = boost::beast;
namespace websocket = beast::websocket;
using beast::error_code;

/// Keeps itself alive by the operations that it waits for.
class ClWebSocketSession : public ClSocket, public std::enable_shared_from_this<ClWebSocketSession> {
 public:
  ClWebSocketSession(beast::tcp_stream oStream, ClService& oService, Seat pSeat)
      : m_oSocket(std::move(oStream)), m_oService(oService), m_pSeat(std::move(pSeat)) {}

  void Accept(const HttpRequest& oRequest, bool bProtocol) {
    // The stream's own clock counts for a WebSocket from here on.
    beast::get_lowest_layer(m_oSocket).expires_never();
    websocket::stream_base::timeout oTimeout{};
    oTimeout.handshake_timeout = coRequestTime;
    oTimeout.idle_timeout = coIdleTime;
    oTimeout.keep_alive_pings = true;
    m_oSocket.set_option(oTimeout);
    m_oSocket.set_option(websocket::stream_base::decorator([bProtocol](websocket::response_type& oResponse) {
      if (bProtocol) oResponse.set(beast::http::field::sec_websocket_protocol, "vt40");
    }));
    m_oSocket.read_message_max(cnMostBodyBytes);
    // A frame is one message in one piece.
    m_oSocket.auto_fragment(false);
    // It counts from now on; what it is told waits until the answer has been sent.
    m_nClient = m_oService.Join(*this);
    m_oSocket.async_accept(oRequest, [p = shared_from_this()](const error_code& oError) {
      if (oError) return p->Gone();
      p->m_bOpen = true;
      p->Read();
      p->Pump();
    });
  }

  ClFlow& Flow() override { return m_oFlow; }

  void Pump() override {
    if (m_bWriting || m_bClosing || !m_bOpen) return;
    if (m_oFlow.IsOverrun()) return Close();
    m_oSending = m_oFlow.Next();
    const auto Done = [p = shared_from_this()](const error_code& oError, size_t) { p->HasWritten(oError); };
    if (m_oSending.pText != nullptr) {
      m_bWriting = true;
      m_oSocket.text(true);
      m_oSocket.async_write(boost::asio::buffer(*m_oSending.pText), Done);
    } else if (m_oSending.pPayload != nullptr) {
      m_bWriting = true;
      m_oSocket.binary(true);
      const StPayload& o = *m_oSending.pPayload;
      const std::array<boost::asio::const_buffer, 2> aBuffers = {boost::asio::buffer(o.aHeader),
                                                                 boost::asio::buffer(o.pPixels, o.nBytes)};
      m_oSocket.async_write(aBuffers, Done);
    }
  }

  void Close() override {
    if (std::exchange(m_bClosing, true) || !m_bOpen) return;
    m_oSocket.async_close(websocket::close_code::going_away, [p = shared_from_this()](const error_code&) {});
  }

 private:
  void Read() {
    m_oSocket.async_read(m_oBuffer, [p = shared_from_this()](const error_code& oError, size_t) {
      // The session ends with its last operation.
      if (oError) return p->Gone();
      p->HasRead();
      p->Read();
    });
  }

  void HasRead() {
    const std::string sMessage = beast::buffers_to_string(m_oBuffer.data());
    m_oBuffer.consume(m_oBuffer.size());
    if (m_nClient != 0) m_oService.Message(m_nClient, sMessage);
  }

  void HasWritten(const error_code& oError) {
    m_bWriting = false;
    m_oSending = StOutgoing();
    if (oError) return Gone();
    Pump();
  }

  /// A write that waits for a client that does not read would keep the session.
  void Gone() {
    m_bClosing = true;
    beast::get_lowest_layer(m_oSocket).cancel();
    if (const unsigned int nClient = std::exchange(m_nClient, 0)) m_oService.Leave(nClient);
  }

  websocket::stream<beast::tcp_stream, false> m_oSocket;
  ClService& m_oService;
  Seat m_pSeat;
  unsigned int m_nClient = 0;  ///< 0: not yet, or no longer
  bool m_bOpen = false;
  ClFlow m_oFlow;
  StOutgoing m_oSending;
  beast::flat_buffer m_oBuffer;
  bool m_bWriting = false;
  bool m_bClosing = false;
};

}  // namespace

void StartWebSocketSession(beast::tcp_stream oStream, const HttpRequest& oRequest, ClService& oService,
                           Seat pSeat) {
  std::make_shared<ClWebSocketSession>(std::move(oStream), oService, std::move(pSeat))
      ->Accept(oRequest, HasProtocol(RequestOf(oRequest).sProtocols));
}

}  // namespace Serve
