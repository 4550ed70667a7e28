// A daemon on grpc-go: the methods of both schemas, answered as the daemons answer at
// network_manager_url and grpc_dapi_url, which keep the model. The wire is grpc-go's;
// messages are passed on as bytes.
//
// usage: grpc_go_daemon
package main

import (
	"context"
	"fmt"
	"log"
	"math"
	"net"
	"os"
	"path/filepath"
	"regexp"
	"strings"
	"time"

	"google.golang.org/grpc"
	"google.golang.org/grpc/encoding"
	"google.golang.org/grpc/keepalive"
)

// The folder of the schemas, set by the linker.
var schemas string

// Takes the place of protobuf: a message is a *[]byte.
type bytesCodec struct{}

func (bytesCodec) Name() string { return "proto" }

func (bytesCodec) Marshal(message interface{}) ([]byte, error) {
	return *message.(*[]byte), nil
}

func (bytesCodec) Unmarshal(bytes []byte, message interface{}) error {
	*message.(*[]byte) = append([]byte{}, bytes...)
	return nil
}

func check(err error) {
	if err != nil {
		log.Fatal(err)
	}
}

// HOST:PORT, ipv4:HOST:PORT or unix:PATH.
func connect(ctx context.Context, url string) (net.Conn, error) {
	network, address := "tcp", strings.TrimPrefix(url, "ipv4:")
	if strings.HasPrefix(url, "unix:") {
		network, address = "unix", strings.TrimPrefix(url, "unix:")
	}
	return (&net.Dialer{}).DialContext(ctx, network, address)
}

// A method that passes a call on, with its deadline and cancellation, and its answer or
// status back.
func forwarder(upstream *grpc.ClientConn, service, name string) grpc.MethodDesc {
	forward := func(_ interface{}, ctx context.Context, decode func(interface{}) error,
		_ grpc.UnaryServerInterceptor) (interface{}, error) {
		var request, reply []byte
		if err := decode(&request); err != nil {
			return nil, err
		}
		err := upstream.Invoke(ctx, "/"+service+"/"+name, &request, &reply)
		return &reply, err
	}
	return grpc.MethodDesc{MethodName: name, Handler: forward}
}

func description(schema, service string, upstream *grpc.ClientConn) *grpc.ServiceDesc {
	text, err := os.ReadFile(filepath.Join(schemas, schema))
	check(err)
	description := &grpc.ServiceDesc{ServiceName: service, HandlerType: (*interface{})(nil)}
	for _, method := range regexp.MustCompile(`\brpc (\w+)`).FindAllSubmatch(text, -1) {
		description.Methods = append(description.Methods,
			forwarder(upstream, service, string(method[1])))
	}
	return description
}

// Returns the endpoint.
func serve(schema, service, upstreamUrl string) string {
	upstream, err := grpc.Dial("passthrough:///"+upstreamUrl, grpc.WithInsecure(),
		grpc.WithAuthority("localhost"), grpc.WithContextDialer(connect),
		grpc.WithDefaultCallOptions(grpc.MaxCallRecvMsgSize(math.MaxInt32)))
	check(err)
	server := grpc.NewServer(grpc.MaxRecvMsgSize(math.MaxInt32),
		grpc.KeepaliveEnforcementPolicy(keepalive.EnforcementPolicy{
			MinTime: 5 * time.Second, PermitWithoutStream: true}))
	server.RegisterService(description(schema, service, upstream), nil)
	ipv4, err := net.Listen("tcp", "127.0.0.1:0")
	check(err)
	go server.Serve(ipv4)
	_, port, _ := net.SplitHostPort(ipv4.Addr().String())
	if ipv6, err := net.Listen("tcp", "[::1]:"+port); err == nil { // not every machine has it
		go server.Serve(ipv6)
	}
	return ipv4.Addr().String()
}

func main() {
	encoding.RegisterCodec(bytesCodec{})
	manager := serve("ostrevan/networkmanager.proto", "ostrevan.networkmanager.NetworkManager",
		os.Getenv("network_manager_url"))
	dapi := serve("ostrevan/grpcdapi.proto", "ostrevan.grpcdapi.DAPI", os.Getenv("grpc_dapi_url"))
	fmt.Printf("ready network_manager_url=%s grpc_dapi_url=%s\n", manager, dapi)
	select {}
}
