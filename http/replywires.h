#pragma once

#include <QtGlobal>

class HttpResponse;
class QNetworkReply;
struct HttpRequestFields;

/// The connections from a reply to the slots of its response. What nobody wants to hear is not
/// connected: a connection that is made for every request costs more than all else that the toolkit
/// does for one.
namespace ReplyWires {

/// A bit of its own for the signal of HttpResponse at the index @p signal; 0 for what it inherits.
quint64 bitOf(int signal);

/// Connects what the exchange itself needs, and what the signals of @p response need whose bits
/// are in @p heard.
void connectNeeded(QNetworkReply *reply, HttpResponse *response, const HttpRequestFields &fields,
                   quint64 heard);

/// Connects what @p response needs to emit its signal of this @p bit; nothing without a reply. May
/// be called again.
void connectFor(QNetworkReply *reply, HttpResponse *response, quint64 bit);

/// Ends the connection of readyRead() to the slot that opens a download's file.
void disconnectOpening(QNetworkReply *reply, HttpResponse *response);

/// Ends the connection of readyRead() to the slot that hands out the head.
void disconnectHead(QNetworkReply *reply, HttpResponse *response);

} // namespace ReplyWires
